// SPDX-License-Identifier: MIT
// The same sample source as folder, image and archive of every kind shows the same files; what cannot be read is told
// apart, each in its own words; what is special about an entry is not lost.
#include "tests/intake/evidence_files.h"
#include "tests/intake/ntfs_image.h"

#include <QProcess>
#include <QtTest>

using namespace intake;

namespace {

view_entry entry_at(source_view& view, const QByteArray& path) {
    const int slash = path.lastIndexOf('/');
    const auto entries = view.list(path.left(qMax(slash, 0))).entries;
    for (const view_entry& entry : entries) {
        if (entry.name == path.mid(slash + 1)) {
            return entry;
        }
    }
    return {};
}

QVector<qint64> all_of(const ntfs_times& times) {
    return {times.created.value_or(-1), times.modified.value_or(-1), times.accessed.value_or(-1),
            times.changed.value_or(-1)};
}

} // namespace

class test_views : public QObject {
    Q_OBJECT

    evidence_files files;

    opened_source open(const QByteArray& name, int volume = 0) const {
        open_options options;
        options.volume = volume;
        return open_source(files.path(name), options);
    }

private Q_SLOTS:
    void initTestCase() {
        qputenv("TZ", "XXX+5"); // no time of a source depends on the zone of the machine
        write_ntfs_image(files.path("volume"), 12, files.path("source"));
        files.run("cp -r source small && rm -r small/Users/anna small/Users/bernd/AppData && mkdir tree && "
                  "mv small/Users/bernd/NTUSER.DAT small/ && rm -r small/Users");
        files.run(
            "mkfs.vfat -C plain.fat 2048 >/dev/null && mcopy -s -i plain.fat small/NTUSER.DAT :: && "
            "truncate -s 18M gpt mbr && cp volume /dev/null && "
            "printf 'label: gpt\nstart=2048,size=4096\nstart=8192,size=24576\n' | sfdisk -q gpt && "
            "printf 'label: dos\nstart=2048,size=4096,type=c\nstart=6144,type=5\nstart=8192,size=24576,type=7\n' |"
            "  sfdisk -q mbr && "
            "for disk in gpt mbr; do dd if=plain.fat of=$disk bs=512 seek=2048 conv=notrunc status=none;"
            "  dd if=volume of=$disk bs=512 seek=8192 conv=notrunc status=none; done");
    }

    void shows_the_same_in_every_kind_data() {
        QTest::addColumn<QByteArray>("made");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("root");
        const auto row = [](const char* title, const char* made, const char* name, const char* root = "") {
            QTest::newRow(title) << QByteArray(made) << QByteArray(name) << QByteArray(root);
        };
        row("volume", "true", "volume");
        row("disk with MBR", "true", "mbr");
        row("disk with GPT", "true", "gpt");
        row("disk with GPT and an MBR that names a volume, too",
            "cp gpt hybrid && printf '\\0\\0\\0\\0\\007\\0\\0\\0\\0\\040\\0\\0\\0\\140\\0\\0' |"
            "  dd of=hybrid bs=1 seek=462 conv=notrunc status=none",
            "hybrid");
        row("GPT whose MBR is lost",
            "cp gpt no_mbr && dd if=/dev/zero of=no_mbr bs=512 count=1 conv=notrunc status=none", "no_mbr");
        row("GPT whose first header is lost",
            "cp gpt no_header && dd if=/dev/zero of=no_header bs=512 seek=1 count=1 conv=notrunc status=none",
            "no_header");
        row("split by numbers", "split -b 5M -a 3 --numeric-suffixes=1 gpt part.", "part.001");
        row("split by numbers, another one given", "true", "part.003");
        row("split by letters", "split -b 5M gpt x", "xaa");
        row("E01 in segments", "ewfacquirestream -qt seg -c none -S 1MiB -b 64 <volume >/dev/null", "seg.E01");
        row("VMDK", "qemu-img convert -t unsafe -O vmdk gpt one.vmdk", "one.vmdk");
        row("VMDK for streams", "qemu-img convert -t unsafe -O vmdk -o subformat=streamOptimized volume two.vmdk",
            "two.vmdk");
        row("VMDK in extents", "qemu-img convert -t unsafe -O vmdk -o subformat=twoGbMaxExtentFlat volume three.vmdk",
            "three.vmdk");
        row("VHD", "qemu-img convert -t unsafe -O vpc volume one.vhd", "one.vhd");
        row("VHD of fixed size", "qemu-img convert -t unsafe -O vpc -o subformat=fixed volume two.vhd", "two.vhd");
        row("FAT", "mkfs.vfat -C whole.fat 8192 >/dev/null && mcopy -s -i whole.fat source/Users ::", "whole.fat");
        row("zip", "cd source && zip -qr1 ../a.zip .", "a.zip");
        row("tar", "tar -cf a.tar source", "a.tar", "source");
        row("tar, gzip", "tar -czf a.tgz source", "a.tgz", "source");
        row("tar, bzip2", "tar -cjf a.tbz source", "a.tbz", "source");
        row("tar, xz", "XZ_OPT=-0 tar -cJf a.txz source", "a.txz", "source");
        row("tar, zstd", "zstd -q --fast a.tar -o a.tzst", "a.tzst", "source");
        row("7z", "7z a -mx1 a.7z source >/dev/null", "a.7z", "source");
        row("named as another kind", "cp a.7z a.E01", "a.E01", "source");
        row("partition folder", "mkdir -p mounted/p1 mounted/p2/Windows && cp -r source/Users mounted/p1", "mounted",
            "p1");
        row("collection",
            "mkdir -p uploads/auto/C%3A && cp -r source/Users uploads/auto/C%3A && zip -qr1 c.zip uploads", "c.zip",
            "uploads/auto/C%3A");
    }
    void shows_the_same_in_every_kind() {
        QFETCH(QByteArray, made);
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, root);
        files.run(made);
        const QStringList expected = everything_in(*open("source").view, "Users");
        QVERIFY(expected.size() > 60);
        const opened_source opened = open(name);
        QVERIFY2(opened.view, qPrintable(opened.problem + opened.reasons.join(QLatin1Char(' '))));
        QCOMPARE(opened.root.path, root);
        QCOMPARE(everything_in(*opened.view, joined(root, "Users")), expected);
        QCOMPARE(texts(opened.findings), QStringList());
    }

    void tells_what_cannot_be_read_data() {
        QTest::addColumn<QByteArray>("made");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("problem"); // its beginning
        QTest::addColumn<int>("reasons");
        const auto row = [](const char* title, const char* made, const char* name, const char* problem,
                            int reasons = 0) {
            QTest::newRow(title) << QByteArray(made) << QByteArray(name) << QString::fromUtf8(problem) << reasons;
        };
        const char* const nothing = "it is not a folder, an image or an archive that can be read";
        row("absent", "true", "absent", "No such file or directory");
        row("pipe", "mkfifo pipe", "pipe", "it is neither a folder nor a regular file");
        row("empty", "touch empty", "empty", "it is empty");
        row("text", "echo nothing of the kind >text", "text", nothing, 2);
        row("zeros", "truncate -s 1M zeros", "zeros", nothing, 2);
        row("no Windows", "mkdir -p linux/etc", "linux", "it holds no folder Users");
        row("two drives", "mkdir -p two/C/Users two/D%3A/users", "two",
            "several of its folders hold a folder Users: C, D%3A; give one of them");
        row("image without Windows", "true", "plain.fat", "none of its volumes holds a folder Users");
        row("volumes with Windows",
            "cp plain.fat u.fat; mmd -i u.fat ::users; cp mbr both; dd if=u.fat of=both bs=512 seek=2048 conv=notrunc "
            "status=none",
            "both", "several volumes hold a folder Users: 1, 2; say which");
        row("BitLocker", "cp volume bde; printf -- -FVE-FS- | dd of=bde bs=1 seek=3 conv=notrunc status=none", "bde",
            "it is encrypted with BitLocker: unlock it and give the unlocked volume");
        row("E01, segment missing", "for n in 01 02 04; do cp seg.E$n gap.E$n; done", "gap.E01",
            "the segment gap.E03 is missing");
        row("E01, last segment missing", "for n in 01 02; do cp seg.E$n end.E$n; done", "end.E01",
            "end.E02: the segment after it is missing");
        row("E01, cut off", "head -c 500000 seg.E01 >cut.E01", "cut.E01",
            "cut.E01: it is cut off or damaged at its end");
        row("split, segment missing", "for n in 001 002 004; do cp part.$n gap.$n; done", "gap.001",
            "the segment gap.003 is missing");
        row("VMDK, extent missing", "sed 's,\"three,\"gone,' three.vmdk >four.vmdk", "four.vmdk",
            "the segment gone-f001.vmdk is missing");
        row("VMDK, extent elsewhere", "sed 's,\"three,\"../three,' three.vmdk >up.vmdk", "up.vmdk",
            "it names a file of another folder: ../three-f001.vmdk");
        row("VMDK, renamed", "cp one.vmdk other.vmdk", "other.vmdk",
            "it was renamed: it can only be read under its own name, one.vmdk");
        row("VHDX", "qemu-img create -qf vhdx one.vhdx 1M", "one.vhdx", "it is a VHDX image, which cannot be read");
        row("zip with password", "zip -qrP geheim locked.zip source", "locked.zip", "it is protected with a password");
        row("7z with password", "7z a -pgeheim -mhe locked.7z small >/dev/null", "locked.7z",
            "it is protected with a password");
        row("empty zip", "printf 'PK\\005\\006' >none.zip && head -c 18 /dev/zero >>none.zip", "none.zip",
            "it is an archive without entries");
        row("no archive in gzip", "gzip -c1 plain.fat >image.gz", "image.gz",
            "it begins like an archive or a compressed file, but no archive can be read from it", 1);
    }
    void tells_what_cannot_be_read() {
        QFETCH(QByteArray, made);
        QFETCH(QByteArray, name);
        QFETCH(QString, problem);
        files.run(made);
        const opened_source opened = open(name);
        QVERIFY(!opened.view);
        QCOMPARE(opened.problem.left(problem.size()), problem);
        QTEST(opened.reasons.size(), "reasons");
    }

    // An image or archive that ends early gives what it has, and says so.
    void tells_what_is_not_whole_data() {
        QTest::addColumn<QByteArray>("made");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("finding"); // its beginning
        const auto row = [](const char* made, const char* name, const char* finding) {
            QTest::newRow(name) << QByteArray(made) << QByteArray(name) << QString::fromUtf8(finding);
        };
        row("head -c 11000000 volume >short.dd", "short.dd", "volume 1: it ends beyond the image");
        row("head -c 20000 a.zip >short.zip", "short.zip", ": the archive is cut off or damaged: ");
        row("head -c 500000 a.tar >short.tar", "short.tar", ": the archive is cut off or damaged: ");
        row("head -c 20000 a.tgz >short.tgz", "short.tgz", ": the archive is cut off or damaged: ");
    }
    void tells_what_is_not_whole() {
        QFETCH(QByteArray, made);
        QFETCH(QByteArray, name);
        QFETCH(QString, finding);
        files.run(made);
        const opened_source opened = open(name);
        QVERIFY2(opened.view, qPrintable(opened.problem));
        QCOMPARE(texts(opened.findings).value(0).left(finding.size()), finding);
    }

    void keeps_to_the_limits_of_archives() {
        open_options options;
        options.limit.most_entries = 20;
        const QString problem = "it holds more entries than can be kept (%1): unpack it and give the folder"_q;
        QCOMPARE(open_source(files.path("a.zip"), options).problem, problem.arg(20));
        options.limit = {};
        options.limit.most_name_bytes = 2000;
        QCOMPARE(open_source(files.path("a.zip"), options).problem, problem.arg(options.limit.most_entries));
        options.limit = {};
        options.limit.largest_entry = 10000;
        const opened_source opened = open_source(files.path("a.zip"), options);
        const QString unreadable = "it is larger than an entry may be (10000 bytes)"_q;
        QCOMPARE(entry_at(*opened.view, "Users/anna/NTUSER.DAT").unreadable, unreadable);
        QVERIFY(texts(opened.findings).contains("Users/anna/NTUSER.DAT: "_q + unreadable));
    }

    void takes_the_volume_that_is_asked_for() {
        QCOMPARE(open("both", 2).volume, 2);
        QVERIFY(open("both", 2).view);
        QCOMPARE(open("both", 2).volumes.at(1).file_system, "ntfs"_q);
        QCOMPARE(open("both", 1).volumes.at(0).offset, qint64{2048} * 512);
        QCOMPARE(open("mbr", 1).problem, "it holds no folder Users"_q);
        // What is left of a GPT when the disk was divided anew counts no more.
        files.run(
            "truncate -s 18M new; printf 'label: dos\nstart=8192,size=24576,type=7\n' | sfdisk -q new; cp gpt stale;"
            "dd if=new of=stale bs=512 count=1 conv=notrunc status=none");
        QCOMPARE(open("stale").volume, 1);
        QCOMPARE(open("gpt").volume, 2);
        QCOMPARE(open("mbr", 3).problem, "it has no volume 3, only 1 to 2"_q);
    }

    void keeps_the_times_data() {
        QTest::addColumn<QByteArray>("made");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QVector<qint64>>("times"); // created, modified, accessed, changed; -1: not told
        const qint64 second = 10000000;
        const qint64 in_2020 = 132538464001234567; // 2020-12-31 00:00:00.1234567
        const qint64 whole = in_2020 / second * second;
        const auto row = [](const char* made, const char* name, const QVector<qint64>& times) {
            QTest::newRow(name) << QByteArray(made) << QByteArray(name) << times;
        };
        row("true", "volume", {ntfs_image_times[0], ntfs_image_times[1], ntfs_image_times[2], ntfs_image_times[3]});
        row("mkdir -p timed/Users/anna && touch -d '2020-12-31 00:00:00.1234567Z' timed/Users/anna/NTUSER.DAT &&"
            "tar -C timed --format=posix --pax-option=delete=atime,delete=ctime -cf timed.tar .",
            "timed.tar", {-1, in_2020, -1, -1});
        row("cd timed && touch -d '2020-12-31Z' Users/anna/NTUSER.DAT && zip -qr ../timed.zip .", "timed.zip",
            {-1, whole, whole, -1});
        row("truncate -s 2M timed.fat && mkfs.vfat timed.fat >/dev/null && TZ=UTC mcopy -sm -i timed.fat timed/Users "
            "::",
            "timed.fat", {whole, whole, whole, -1});
    }
    void keeps_the_times() {
        QFETCH(QByteArray, made);
        QFETCH(QByteArray, name);
        QFETCH(QVector<qint64>, times);
        files.run(made);
        const opened_source opened = open(name);
        QVERIFY2(opened.view, qPrintable(opened.problem));
        QCOMPARE(all_of(entry_at(*opened.view, "Users/anna/NTUSER.DAT").times), times);
    }

    void keeps_the_times_of_a_mounted_volume() {
        QDir().mkdir(QString::fromUtf8(files.path("mounted-ntfs")));
        if (QProcess::execute("ntfs-3g"_q, {"-oro"_q, QString::fromUtf8(files.path("volume")),
                                            QString::fromUtf8(files.path("mounted-ntfs"))}) != 0) {
            QSKIP("this machine does not let us mount a volume", 0);
        }
        QVector<qint64> times;
        {
            const opened_source opened = open("mounted-ntfs");
            times = opened.view ? all_of(entry_at(*opened.view, "Users/anna/NTUSER.DAT").times) : times;
        }
        files.run("umount mounted-ntfs");
        QCOMPARE(times,
                 QVector<qint64>({ntfs_image_times[0], ntfs_image_times[1], ntfs_image_times[2], ntfs_image_times[3]}));
    }

    void tells_what_a_file_system_keeps_elsewhere() {
        files.run("mkdir -p odd/Users/junction odd/Users/cloud && cd odd/Users && touch plain compact link && head -c "
                  "5000 compact plain ../../plain.fat >secret");
        write_ntfs_image(files.path("odd.ntfs"), 4, files.path("odd"),
                         {{"Users/junction", 0xa0000003},
                          {"Users/cloud", 0x9000001a},
                          {"Users/link", 0xa000000c},
                          {"Users/compact", 0x80000017},
                          {"Users/secret", 0, true}});
        const opened_source opened = open("odd.ntfs");
        QVERIFY2(opened.view, qPrintable(opened.problem));
        QStringList found;
        for (const view_entry& entry : opened.view->list("Users").entries) {
            found << QString::fromUtf8(entry.name) + " %1 "_q.arg(int(entry.kind)) + entry.unreadable;
        }
        QCOMPARE(
            found,
            QStringList({"cloud 1 "_q, "compact 0 its content is kept elsewhere (reparse point 0x80000017)"_q,
                         "junction 2 "_q, "link 2 "_q, "plain 0 "_q, "secret 0 it is encrypted by Windows (EFS)"_q}));
        QVERIFY(everything_in(*opened.view, "Users").contains("/secret it is encrypted by Windows (EFS)"_q));
    }
};

QTEST_GUILESS_MAIN(test_views)
#include "test_views.moc"
