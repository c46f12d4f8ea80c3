#pragma once

#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrTypes.h>

#include <span>
#include <string_view>

namespace Xcvr {

/// What follows from a media type alone.
struct MediaTypeInfo {
   MediaType mediaType;
   /// For people. Of the two DWDM kinds of fixed wavelength it is the pattern whose two numbers
   /// come from the wavelength; XcvrNewStatus::getMediaTypeString fills them in.
   std::string_view text;
   uint32_t bitrateKbps;
   ElectricalInterface electricalInterface;
   bool optical;
};

/// All media types, in the order of their codes.
[[nodiscard]] XCVR_API std::span<MediaTypeInfo const> mediaTypeInfos();
/// Null for a code that is no media type.
[[nodiscard]] XCVR_API MediaTypeInfo const * mediaTypeInfo( MediaType mediaType );

} // namespace Xcvr
