#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarnel {

/// The bytes of a carrier: its own bytes, then one entry for each hidden file, each made of payload, record,
/// payload length field and record length field, without gap or alignment. Positions count from 1.

inline constexpr std::size_t kLengthFieldSize = 40;
inline constexpr std::size_t kTrailerSize = 2 * kLengthFieldSize;

/// A carrier ends below 2 GiB: positions are 32-bit signed.
inline constexpr std::int64_t kCarrierLimit = 0x7FFFFFFF;

/// The longest record text that is written or read. The longest names, folders and titles that people use are
/// far below it, and a crafted carrier can't make a reader take its whole length into memory.
inline constexpr std::size_t kRecordLimit = std::size_t{1} << 20;

/// Carriers are copied in blocks of this size; between two blocks an operation yields and looks for a cancel.
inline constexpr std::size_t kCopyBlock = 15000;

/// Every blank of a length field becomes a random byte of this range, both ends included.
inline constexpr int kFillingLow = 100;
inline constexpr int kFillingHigh = 220;

/// What a record written by this program says of its format, and the only format that is read.
inline constexpr std::string_view kFormatVersion = "701";

namespace tag {
inline constexpr std::string_view kName = "?Fnm=<";
inline constexpr std::string_view kPlainSize = "?Fls=<";
inline constexpr std::string_view kStoredSize = "?FlsEn=<";
inline constexpr std::string_view kAttributes = "?Attr=<";
inline constexpr std::string_view kDate = "?Date=<";
inline constexpr std::string_view kCompressed = "?Cmpr=<";
inline constexpr std::string_view kFolder = "?Fldnm=<";
inline constexpr std::string_view kTitle = "?HideoutTitel=<";
inline constexpr std::string_view kWriterVersion = "?Vers=<";
inline constexpr std::string_view kFormat = "?CompVers=<";
inline constexpr std::string_view kMode =
    "?Mode=<";  ///< octal permission bits, where the attributes can't say them
inline constexpr std::string_view kSeal = "?Seal=<";    ///< the payload's last 16 bytes in hexadecimal
inline constexpr std::string_view kMtime = "?Mtime=<";  ///< time of last change, seconds since 1970 in UTC
}  // namespace tag

/// What stands for a folder at a root node.
inline constexpr std::string_view kRootFolder = "*RootFolder*";

}  // namespace tarnel
