#ifndef QEL_PROGRAM_NETCDFSIZE_H
#define QEL_PROGRAM_NETCDFSIZE_H

/// @file
/// The size that a netCDF file should have.

#include <cstdint>
#include <optional>
#include <string>

namespace program {

/// Bytes up to the end of the last variable of a file in a classic format of netCDF, by its header;
/// none if it is in another format, the maximum if the header is damaged. Readers take what is
/// missing at the end of such a file for zeros.
std::optional<std::uint64_t> netcdfSize(const std::string& path);

} // namespace program

#endif
