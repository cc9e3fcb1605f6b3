// What selftest.exe checks once the DLL is loaded.
#pragma once

#include "sdk/selftest/Library.h"
#include "sdk/selftest/Report.h"

namespace z3d::sdk {

void CheckVersion(const Library& library, Report& report);

// All functions of the header, by name. False when one is missing: the other checks need them.
bool CheckExports(const Library& library, Report& report);

// The balls in every mode, compared with checksums that the plain form gave.
void CheckPictures(const Library& library, Report& report);

// The balls from three channel files in the folder for temporary files, with progress and with a cancel.
void CheckFiles(const Library& library, Report& report);

} // namespace z3d::sdk
