// SPDX-License-Identifier: MIT
// Result table searches, first half: what the recent-documents key keeps of searches.
#include "extractors/search_procedure.h"
#include "extractors/steps.h"
#include "registry/text_search_registry.h"

namespace {

const search_step step{
    {
        "void cortana_winos::extract_search_from_recents()",
        "[extract_search_from_recents] ----- STARTS ------",
        "[extract_search_from_recents]Destination Db opening ---FAILED--- ",
        "[extract_search_from_recents] ----- ENDS ------",
        {"[extract_search_from_recents] --------INSERTION Query ----FAILED------", false, "", ""},
        "INSERT INTO searches(bookmark,system_user,domain_user,search_keyword,search_timestamp,source_file, "
        "os_scheme_display,source_count_name) VALUES (0,?,?,?,?,?,?,?)",
    },
    recents_rule,
};

} // namespace

void fill_searches_from_recents(const step_context& context, std::unique_ptr<text_search_registry>& walker,
                                const QStringList& hives) {
    run_search_step(context, step, walker, hives);
}

step_columns columns_of_searches_from_recents() {
    return columns_of(step);
}
