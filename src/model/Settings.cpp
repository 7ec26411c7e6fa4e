/// \file
/// Settings values (reading and writing live in SettingsFile.cpp).
#include "model/Settings.h"
