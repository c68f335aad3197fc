// SPDX-License-Identifier: MIT
// Result table searches, second half: search addresses filed as file extensions.
#include "extractors/search_procedure.h"
#include "extractors/steps.h"
#include "registry/search_from_com.h"

namespace {

const search_step step{
    {
        "void cortana_winos::extract_search_from_com_registry()",
        "[extract_search_from_com_registry] ----- STARTS ------",
        "[extract_search_from_com_registry]Destination Db opening ---FAILED--- ",
        "[extract_search_from_com_registry] ----- ENDS ------",
        {"--------INSERTION Query ----FAILED------", true, "Error :- ", "Query :- "},
        "INSERT INTO searches(bookmark,system_user,domain_user,search_keyword,search_timestamp,source_file, "
        "os_scheme_display,source_count_name) VALUES (0,?,?,?,?,?,?,?)",
    },
    com_rule,
};

} // namespace

void fill_searches_from_com(const step_context& context, std::unique_ptr<search_from_com>& walker,
                            const QStringList& hives) {
    run_search_step(context, step, walker, hives);
}

step_columns columns_of_searches_from_com() {
    return columns_of(step);
}
