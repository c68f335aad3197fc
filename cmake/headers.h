// SPDX-License-Identifier: MIT
// What most files include, compiled once where a build asks for it. No QtTest: its main goes by a target's modules.
#pragma once

#include <QWidget>
#include <QtCore>
#include <QtSql>

#include <filesystem>
#include <fstream>
#include <functional>
