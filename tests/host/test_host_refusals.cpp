// SPDX-License-Identifier: MIT
// What the command-line host refuses: the exit code, the words, and that nothing at all was written.
#include "host_case.h"

#include <QtTest>

namespace {

// Everything that a row of the table may name: a source with one recording, and things in the way of results.
void prepare(const host_case& host) {
    const std::filesystem::path base = host.base().constData();
    host.add_recording("anna", "a.wav");
    host.write(host.base() + "/file", "x");
    host.write(host.base() + "/users_is_file/Users", "x");
    for (const char* const folder : {"no_users/Windows", "only_public/Users/Public", "only_public/Users/default user",
                                     "with_plugin_link/Artifacts_Result", "with_database_link/Artifacts_Result/Cortana",
                                     "database_is_folder/Artifacts_Result/Cortana/Cortana.sqlite",
                                     "around/Artifacts_Result/Cortana/.workers/Users/anna", "closed"}) {
        std::filesystem::create_directories(base / folder);
    }
    std::filesystem::permissions(base / "closed", std::filesystem::perms(0555));
    const char* const links[][2] = {
        {"source/Users", "into_source"},
        {"nowhere", "dangling"},
        {"source/Users/anna", "with_plugin_link/Artifacts_Result/Cortana"},
        {"source/Users/new.sqlite", "with_database_link/Artifacts_Result/Cortana/Cortana.sqlite"},
    };
    for (const auto& [target, link] : links) {
        std::filesystem::create_symlink(base / target, base / link);
    }
}

} // namespace

class test_host_refusals : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void refuses_data() {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("words");
        const auto row = [](const char* name, const char* arguments, int code, const char* words) {
            QTest::newRow(name) << arguments << code << words;
        };
        row("no command", "--", 2, "a command is missing");
        row("unknown command", "extrat {S} {R}", 2, "did you mean 'extract'?");
        row("unknown option", "extract --tabels x {S} {R}", 2, "tabels");
        row("three folders", "extract {S} {R} {R}", 2, "two paths");
        row("option without value", "extract {S} {R} --user", 2, "user");
        row("unknown table", "extract --tables searches,cokies {S} {R}", 2, "'cokies'; did you mean 'cookies'?");
        row("table in upper case", "extract --tables DOMSTORES {S} {R}", 2, "there is no table 'DOMSTORES'");
        row("source number", "extract --source-number 1x {S} {R}", 2, "'1x' is not a number");
        row("user leads up", "extract --user .. {S} {R}", 2, "cannot name a profile folder");
        row("user is a path", "extract --user ../anna {S} {R}", 2, "cannot name a profile folder");
        row("domain user is a path", "extract --user anna=../bernd {S} {R}", 2, "cannot name a profile folder");
        row("user without name", "extract --user =x {S} {R}", 2, "cannot name a profile folder");
        row("no worker", "extract --jobs 0 {S} {R}", 2, "--jobs does not take '0'");
        row("jobs in words", "check --jobs x {S}", 2, "--jobs does not take 'x'");
        row("no patience", "check --step-timeout 0 {S}", 2, "--step-timeout does not take '0'");
        row("step limit below zero", "extract --step-limit -1 {S} {R}", 2, "--step-limit does not take '-1'");
        row("no memory", "check --memory-limit 0 {S}", 2, "--memory-limit does not take '0'");
        row("unit without a number", "extract --output-limit K {S} {R}", 2, "--output-limit does not take 'K'");
        row("unknown progress", "check --progress lines {S}", 2, "there is no form of progress 'lines'");
        row("log without a name", "extract --log= {S} {R}", 2, "the debug log's name is empty");
        row("check of two folders", "check {S} {R}", 2, "check takes one path");
        row("verify of nothing", "verify", 2, "verify takes RESULT");
        row("log without file", "log", 2, "log takes one file");
        row("log of nothing", "log {B}/missing", 2, "cannot be opened");
        row("rows of nothing", "rows {B}/missing", 5, "cannot read the result database");
        row("rows of no database", "rows {B}/file", 5, "cannot read the result database");
        row("rows of an unknown table", "rows --tables cookie {R}", 2, "did you mean 'cookies'?");
        row("missing source", "extract {B}/missing {R}", 4, "No such file");
        row("source is a file", "extract {B}/file {R}", 2, "is not a folder");
        row("source without Users", "extract {B}/no_users {R}", 4, "holds no folder Users");
        row("chosen user, source without Users", "extract --user anna {B}/no_users {R}", 4, "holds no folder Users");
        row("Users is a file", "extract {B}/users_is_file {R}", 3, "Users: it is not a folder");
        row("only system profiles", "extract {B}/only_public {R}", 4, "holds no profile");
        row("result is a file", "extract {S} {B}/file", 5, "not a folder");
        row("result below a file", "extract {S} {B}/file/x", 5, "Not a directory");
        row("result is the source", "extract {S} {S}", 2, "inside the source");
        row("result in the source", "extract {S} {S}/new/folder", 2, "inside the source");
        row("result in the source by a link", "extract {S} {B}/into_source/new", 2, "inside the source");
        row("result in the source by dots", "extract {S} {B}/no_users/../source/new", 2, "inside the source");
        row("result by dots from nowhere", "extract {S} {B}/missing/../source/new", 5, "No such file");
        row("result is a dangling link", "extract {S} {B}/dangling", 5, "a link on the way leads nowhere");
        row("plugin folder in the source", "extract {S} {B}/with_plugin_link", 2, "inside the source");
        row("database to be made in the source", "extract {S} {B}/with_database_link", 5, "leads nowhere");
        row("database is a folder", "extract {S} {B}/database_is_folder", 5, "not a regular file");
        row("source in the workers' folder", "extract {B}/around/Artifacts_Result/Cortana/.workers {B}/around", 2,
            "the source lies in");
        row("log in the source", "extract --log {S}/log {S} {R}", 2, "inside the source");
        row("log in a missing folder", "extract --log {B}/missing/log {S} {R}", 5, "its folder does not exist");
        row("log is a folder", "extract --log {B}/no_users {S} {R}", 5, "not a regular file");
        row("log in its folder", "extract --log {R}/Artifacts_Result/Cortana/x {S} {R}", 2, "in the plugin's folder");
        row("missing library", "extract --library {B}/missing.so {S} {R}", 1, "the plugin cannot be loaded");
        row("result without permission", "extract {S} {B}/closed", 5, "Permission denied");
    }
    void refuses() {
        QFETCH(QString, arguments);
        QFETCH(QString, words);
        const host_case host;
        prepare(host);
        const QString base = QString::fromUtf8(host.base());
        const QStringList before = everything_below(base);
        const host_answer answer = host.run(arguments, respect_permissions);
        QVERIFY2(QString::fromUtf8(answer.error).contains(words), answer.error.constData());
        QTEST(answer.code, "code");
        QCOMPARE(answer.out, QByteArray());
        QCOMPARE(everything_below(base), before);
    }
};

QTEST_GUILESS_MAIN(test_host_refusals)
#include "test_host_refusals.moc"
