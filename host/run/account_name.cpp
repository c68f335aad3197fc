// SPDX-License-Identifier: MIT
// Names with "/", "." and ".." are refused.
#include "host/run/account_name.h"

std::optional<system_account> account_of(const QString& text) {
    const int equals = text.indexOf(QLatin1Char('='));
    const system_account account{equals < 0 ? text : text.left(equals),
                                 equals < 0 ? QStringLiteral("") : text.mid(equals + 1)};
    for (const QString& name : {account.system_user, account.domain_user}) {
        if (name.contains(QLatin1Char('/')) || name == QLatin1String(".") || name == QLatin1String("..")) {
            return std::nullopt;
        }
    }
    return account.system_user.isEmpty() ? std::nullopt : std::make_optional(account);
}
