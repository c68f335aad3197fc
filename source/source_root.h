// SPDX-License-Identifier: MIT
// The source root as it is gone by from the moment on in which the host sets it.
#pragma once

#include <QDir>
#include <QString>

// root itself when it begins with "/" or is empty (an empty one has no source). A relative one is put behind the
// working directory of this moment, so that neither a later change of it nor a relative path that evidence names can
// lead elsewhere; it stays relative, and nothing is found, when there is no working directory. Nothing is normalised:
// a "/" at its end stays or stays missing, and links and ".." are the gate's to judge.
inline QString absolute_root(const QString& root) {
    const QString here = QDir::currentPath(); // empty when the folder is gone
    if (root.isEmpty() || root.startsWith(QLatin1Char('/')) || here.isEmpty()) {
        return root;
    }
    return (here.endsWith(QLatin1Char('/')) ? here : here + QLatin1Char('/')) + root;
}
