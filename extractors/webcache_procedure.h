// SPDX-License-Identifier: MIT
// The procedure of the three WebCache steps: reads the Cortana containers of each WebCacheV01.dat and writes one row an
// entry. A step describes itself as a webcache_step and makes one call of run_webcache_step.
#pragma once

#include "ese/specific_table.h"
#include "extractors/row_values.h"
#include "extractors/step_run.h"
#include "source/source_guard.h"

#include <QStringList>

#include <memory>

// One step as data.
struct webcache_step {
    step_texts texts; // the statement takes the values of webcache_columns()
    QString container_name;
    QString (*windows_path)(const specific_table::struct_ano_data& entry);
    QString (*url)(const QString& url);
};

// What a result row is made of.
struct webcache_row {
    const row_origin& origin;
    const specific_table::struct_ano_data& entry;
    QString windows_path;
    QString relative_path; // of the file in the source, whether it is there or not
    bool file_exists;
    QString url;
};

// The values that all three statements bind, in order.
const bindings<webcache_row>& webcache_columns();

// The walk of a step over its files. A container's records are written in blocks while they are read: any number of
// records may share one long value, so a list of them all would take memory that the file chooses.
class webcache_walk {
public:
    webcache_walk(step_run& running_step, const webcache_step& described_step);

    // False when the run was cancelled.
    bool read_files(specific_table& reader, const QStringList& files);
    // For the reader: after each record of a container's table, which is the last one of its list. Writes the list and
    // empties it when it is large enough.
    void record_read(specific_table& reader);
    // True when no record is wanted any more.
    bool is_stopped() const { return stopped; }

private:
    bool read_file(specific_table& reader, const QString& file);
    bool select_containers(const specific_table& reader, QList<specific_table::struct_container_data>& selected) const;
    void write_records(specific_table& reader);
    webcache_row row_of(const specific_table::struct_ano_data& entry);

    step_run& run;
    const webcache_step& step;
    source_guard guard; // nothing that an entry names is looked at outside the source
    row_origin origin;  // of the file being read
    int unwritten_characters = 0;
    bool stopped = false;
};

// A reader that tells the walk of each record of a container's table.
template <class Reader>
class telling_reader : public Reader {
public:
    explicit telling_reader(webcache_walk& walk_to_tell) : walk(walk_to_tell) {}
    using Reader::get_column_name_and_type;
    void get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error, QString directory,
                                  QStringList secure_directories) override {
        const int known = this->list_ano_data.size();
        Reader::get_column_name_and_type(record, error, directory, secure_directories);
        if (this->list_ano_data.size() > known) {
            walk.record_read(*this);
            this->walk_stopped = walk.is_stopped();
        }
    }

private:
    webcache_walk& walk;
};

// Runs the whole step over files. The reader lives in the owner's member while the step runs.
template <class Reader>
void run_webcache_step(const step_context& context, const webcache_step& step, std::unique_ptr<specific_table>& reader,
                       const QStringList& files) {
    run_step(context, step.texts, [&](step_run& run) {
        webcache_walk walk(run, step);
        reader = std::make_unique<telling_reader<Reader>>(walk);
        const bool finished = walk.read_files(*reader, files);
        reader.reset();
        return finished;
    });
}
