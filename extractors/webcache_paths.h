// SPDX-License-Identifier: MIT
// The rules by which rows are made of WebCache containers and entries: which containers, which paths, which URL. Pure
// functions on records and text; all searches are case-sensitive, and no result is a null text.
#pragma once

#include "ese/specific_table.h"

#include <QString>

// True for a container of that exact name whose directory contains "Cortana" or "cortana".
bool is_cortana_container(const specific_table::struct_container_data& container, const QString& name);

// The secure sub-directory of an entry, by its one-based index; "" for 0 and for an index that is no number, negative
// or past the list.
QString secure_sub_directory(const specific_table::struct_ano_data& entry);

// directory + secure sub-directory + "/" + file name, the package's name corrected.
QString windows_path_in_secure_directory(const specific_table::struct_ano_data& entry);
// directory + file name, the package's name corrected.
QString windows_path_in_directory(const specific_table::struct_ano_data& entry);

// Which containers a table's rows come from, and the path that an entry of one stands for.
struct webcache_naming {
    const char* table;
    const char* container_name;
    QString (*windows_path)(const specific_table::struct_ano_data& entry);
};
inline constexpr webcache_naming cache_files_naming{"cache_files", "Content", windows_path_in_secure_directory};
// Deliberate: no secure sub-directory, whatever an entry names.
inline constexpr webcache_naming cookies_naming{"cookies", "Cookies", windows_path_in_directory};
inline constexpr webcache_naming domstore_naming{"domstore", "DOMStore", windows_path_in_secure_directory};

// windows_path with the source root in place of every "C:/".
QString on_disk_path(const QString& windows_path, const QString& root);

// The url as it is.
QString whole_url(const QString& url);
// Without everything up to the first "@", unless that stands at the very beginning.
QString url_without_user(const QString& url);
// Without any "DOMStore:", if it begins with one.
QString url_without_domstore(const QString& url);
