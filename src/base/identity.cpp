#include "base/identity.h"

#include <gmp.h>

namespace zenlo {

std::string program_version_id() {
  return std::string(ZENLO_VERSION_STRING) + " (" + ZENLO_REVISION + ")";
}

std::string program_version() {
  return "Zenlo5 version " + program_version_id() + " (" + __DATE__ + " "
         + __TIME__ + ", gmp " + gmp_version + ", gcc "
         + std::to_string(__GNUC__) + "." + std::to_string(__GNUC_MINOR__) + "."
         + std::to_string(__GNUC_PATCHLEVEL__) + ", 64-bit, reentrant)";
}

std::string program_authors() {
  return "the Zenlo team";
}

std::string program_license() {
  return "Zenlo is distributed by " + program_authors()
         + " under the terms of the Zenlo license,\n"
           "which comes with it. It is provided as is, without warranty of "
           "any kind.\n"
           "\n"
           "Zenlo uses the GNU Multiple Precision Arithmetic Library (GMP), "
           "which is\n"
           "distributed under the terms of the GNU Lesser General Public "
           "License (LGPL).";
}

}  // namespace zenlo
