// SPDX-License-Identifier: MIT
// The steps, one file each in this folder. Each fills one result table (searches takes two) from the given sources:
// start line, connection and transaction, rows, commit, end line. Nothing is returned and nothing thrown; failures are
// log lines, and a source that cannot be read gives no rows.
#pragma once

#include "extractors/step_run.h"

#include <QStringList>

#include <memory>

class contact_triggers;
class place_triggers;
class search_from_com;
class specific_table;
class text_search_registry;
class timetriggers;

// files, hives, folders: full paths as discovery listed them. reader, walker: where the step's own lives while it
// runs; null before and after.
void fill_time_reminders(const step_context& context, std::unique_ptr<timetriggers>& reader, const QStringList& files);
void fill_place_reminders(const step_context& context, std::unique_ptr<place_triggers>& reader,
                          const QStringList& files);
void fill_contact_triggers(const step_context& context, std::unique_ptr<contact_triggers>& reader,
                           const QStringList& files);
void fill_latest_audio_search(const step_context& context, const QStringList& folders);
void fill_graphed_cache(const step_context& context, const QStringList& folders);
void fill_cache_files(const step_context& context, std::unique_ptr<specific_table>& reader, const QStringList& files);
void fill_cookies(const step_context& context, std::unique_ptr<specific_table>& reader, const QStringList& files);
void fill_domstore(const step_context& context, std::unique_ptr<specific_table>& reader, const QStringList& files);
void fill_searches_from_recents(const step_context& context, std::unique_ptr<text_search_registry>& walker,
                                const QStringList& hives);
void fill_searches_from_com(const step_context& context, std::unique_ptr<search_from_com>& walker,
                            const QStringList& hives);
