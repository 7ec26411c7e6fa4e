/// \file
/// Settings values (reading and writing live in SettingsFile.cpp).
#include "storage/Settings.h"
