/// \file
/// Settings values (reading and writing live with the settings file class).
#include "storage/Settings.h"
