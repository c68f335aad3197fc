// SPDX-License-Identifier: MIT
// The tools' words are shown only when they fail.
#include "tests/intake/evidence_files.h"

#include "samples/sample_source.h"

#include <QCryptographicHash>
#include <QProcess>

using namespace intake;

namespace {

class hashing final : public file_sink {
public:
    explicit hashing(int count) : lines(count) {}
    void begin(int) override { content = std::make_unique<QCryptographicHash>(QCryptographicHash::Sha1); }
    bool take(int, const char* bytes, qint64 count) override {
        content->addData(bytes, static_cast<int>(count));
        return true;
    }
    bool end(int index, const QString& problem) override {
        lines[index] = problem.isEmpty() ? QString::fromLatin1(content->result().toHex()) : problem;
        return true;
    }
    QVector<QString> lines;

private:
    std::unique_ptr<QCryptographicHash> content;
};

} // namespace

const std::function<bool()> never = [] { return false; };

evidence_files::evidence_files() {
    if (!write_sample_source(QString::fromUtf8(path("source")))) {
        qFatal("the sample source cannot be written");
    }
}

void evidence_files::run(const QByteArray& script) const {
    QProcess shell;
    shell.setWorkingDirectory(folder.path());
    shell.setProcessChannelMode(QProcess::MergedChannels);
    shell.start("sh"_q, {"-ec"_q, "export PATH=$PATH:/usr/sbin; "_q + QString::fromUtf8(script)});
    if (!shell.waitForFinished() || shell.exitCode() != 0) {
        qFatal("%s: %s", script.constData(), shell.readAll().constData());
    }
}

QStringList everything_in(source_view& view, const QByteArray& top) {
    QStringList found;
    QVector<QByteArray> files;
    QVector<QByteArray> folders{top};
    while (!folders.isEmpty()) {
        const QByteArray folder = folders.takeLast();
        const view_listing listing = view.list(folder);
        if (!listing.problem.isEmpty()) {
            found << QString::fromUtf8(folder) + ": "_q + listing.problem;
        }
        for (const view_entry& entry : listing.entries) {
            const QByteArray path = joined(folder, entry.name);
            found << QString::fromUtf8(path.mid(top.size())) + " kind "_q + QString::number(int(entry.kind));
            if (entry.kind == entry_kind::folder) {
                folders.append(path);
            } else if (entry.kind == entry_kind::file) {
                files.append(path);
            }
        }
    }
    hashing sink(files.size());
    view.read_files(files, sink);
    for (int i = 0; i < files.size(); ++i) {
        found << QString::fromUtf8(files[i].mid(top.size())) + QLatin1Char(' ') + sink.lines[i];
    }
    found.sort();
    return found;
}

QStringList texts(const health_report& report) {
    QStringList list;
    for (const QVector<finding>& findings : {report.problems, report.notes}) {
        for (const finding& one : findings) {
            list << one.path + ": "_q + one.reason;
        }
    }
    list.sort();
    return list;
}
