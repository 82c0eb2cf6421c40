// The program's identity, as -version, -license, get-info and the C
// interface's version functions print it.
#ifndef ZENLO_BASE_IDENTITY_H
#define ZENLO_BASE_IDENTITY_H

#include <string>

namespace zenlo {

// "Zenlo5 version X (rev) (date, gmp, gcc, 64-bit, reentrant)".
std::string program_version();

// "X (rev)": the release and the revision it was built from.
std::string program_version_id();

std::string program_authors();

std::string program_license();

}  // namespace zenlo

#endif
