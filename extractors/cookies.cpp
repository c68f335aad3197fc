// SPDX-License-Identifier: MIT
// Result table cookies: the cookies that Cortana's package stored.
#include "ese/cookies.h"
#include "extractors/step_columns.h"
#include "extractors/steps.h"
#include "extractors/webcache_procedure.h"

namespace {

// Deliberate: three blanks in the failure line.
const webcache_step step{
    {
        "void cortana_winos::extract_cookies()",
        "[extract_cookies] ----- STARTS ------",
        "[extract_cookies]Destination Db opening ---FAILED--- ",
        "[extract_cookies] ----- ENDS ------",
        {"[extract_cookies]--- insertion query fails   --- ", false, "", ""},
        "INSERT INTO "
        "cookies(bookmark,system_user,domain_user,file_name,file_size,file_path,preview_file_path,"
        "export_file_paths,file_exists,windows_path,url,access_count,creation_timestamp,modification_timestamp,"
        "last_accessed_timestamp,sync_timestamp,expiration_timestamp,source_file, os_scheme_display,"
        "source_count_name) VALUES(0,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
    },
    cookies_naming,
    url_without_user,
};

} // namespace

void fill_cookies(const step_context& context, std::unique_ptr<specific_table>& reader, const QStringList& files) {
    run_webcache_step<cookies>(context, step, reader, files);
}

step_columns columns_of_cookies() {
    return columns_of(step.texts, webcache_columns());
}
