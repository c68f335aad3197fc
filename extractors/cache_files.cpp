// SPDX-License-Identifier: MIT
// Result table cache_files: the files that Cortana left in the user's internet cache.
#include "ese/cache.h"
#include "extractors/step_columns.h"
#include "extractors/steps.h"
#include "extractors/webcache_procedure.h"

namespace {

const webcache_step step{
    {
        "void cortana_winos::extract_cache_files()",
        "[extract_cache_files] ----- STARTS ------",
        "[extract_cache_files]Destination Db opening ---FAILED--- ",
        "[extract_cache_files] ----- ENDS ------",
        {"[extract_cache_files]--- insertion query ---FAILED--- ", false, "", ""},
        "INSERT INTO "
        "cache_files(bookmark,system_user,domain_user,file_name,file_size,file_path,preview_file_path,"
        "export_file_paths,file_exists,windows_path,url,access_count,creation_timestamp,modification_timestamp,"
        "last_accessed_timestamp,sync_timestamp,expiration_timestamp,source_file, os_scheme_display,"
        "source_count_name) VALUES(0,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
    },
    cache_files_naming,
    whole_url,
};

} // namespace

void fill_cache_files(const step_context& context, std::unique_ptr<specific_table>& reader, const QStringList& files) {
    run_webcache_step<cache>(context, step, reader, files);
}

step_columns columns_of_cache_files() {
    return columns_of(step.texts, webcache_columns());
}
