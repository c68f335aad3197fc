// SPDX-License-Identifier: MIT
// Done through environment variables, since Qt reads them when the application object is made.
#include "host/environment.h"

#include <QTextCodec>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>

namespace {

bool locale_is_utf8() {
    return std::setlocale(LC_CTYPE, "") != nullptr && std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
}

} // namespace

void prepare_environment() {
    // Nothing is ever shown, so a display that is named but cannot be reached must not end the program either.
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    if (!locale_is_utf8()) {
        const char* const overriding = std::getenv("LC_ALL");
        const bool overridden = overriding != nullptr && *overriding != '\0';
        ::setenv(overridden ? "LC_ALL" : "LC_CTYPE", "C.UTF-8", 1);
    }
    std::signal(SIGXFSZ, SIG_IGN); // a file size limit is a failed write like a full disk
}

void settle_file_name_encoding() {
    constexpr int utf8_mib = 106;
    QTextCodec* const current = QTextCodec::codecForLocale();
    if (current == nullptr || current->mibEnum() != utf8_mib) {
        QTextCodec::setCodecForLocale(QTextCodec::codecForMib(utf8_mib));
    }
}
