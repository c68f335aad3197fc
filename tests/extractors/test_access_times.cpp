// SPDX-License-Identifier: MIT
// No step changes when evidence was last read.
#include "samples/sample_source.h"
#include "tests/extractors/all_steps.h"
#include "tests/support/test_support.h"

#include <QDirIterator>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

// Read long before it was written: a time that every mounting which keeps access times renews.
bool make_unread(const QString& path) {
    const timespec times[] = {{1000000000, 0}, {1500000000, 0}};
    return ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0) == 0;
}

qint64 access_time(const QString& path) {
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? qint64{status.st_atim.tv_sec} : -1;
}

} // namespace

class test_access_times : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void files_stay_unread() {
        const test_case_folder folder;
        QVERIFY(write_sample_source(folder.root()));
        QStringList files;
        for (QDirIterator walk(folder.root(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
             walk.hasNext();) {
            files.append(walk.next());
            QVERIFY(make_unread(files.last()));
        }
        const auto front = folder.make_front();
        front->find_source_file();
        for (const step& ran : steps) {
            (front.get()->*ran.extract)();
            QVERIFY2(!folder.dump(QLatin1String(ran.table)).isEmpty(), ran.table);
        }
        QStringList read;
        for (const QString& file : qAsConst(files)) {
            read += access_time(file) == 1000000000 ? QStringList() : QStringList(file.mid(folder.root().size()));
        }
        QCOMPARE(read, QStringList());
    }
};

QTEST_MAIN(test_access_times)
#include "test_access_times.moc"
