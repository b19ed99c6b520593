#pragma once

#include <string>

#include "Plan.h"

/// A plan as one page that stands alone, for people who approve changes: the tree, whose lines can
/// be chosen by their kind and searched. Without scripts it shows all of it.
std::wstring planHtml(const Plan& plan);
