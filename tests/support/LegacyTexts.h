#pragma once

/// The assertion texts of the legacy interface's editor and authenticators that are sentences.
namespace TestSupport::LegacyTexts {

inline constexpr const char* textTooLong =
    R"(false && " Attribute len should be <= Attribute Max Length ( 255 ) ")";
inline constexpr const char* piecesTooLong =
    R"(len + lenToAdd <= PacketConstants::maxLength() && " Len of the packet should be <= 4KB ")";
inline constexpr const char* packetTooLong =
    R"(len <= PacketConstants::maxLength() && " Length of the packet less than or equal to 4KB ")";
inline constexpr const char* setPacketTooLong = "l2 <= PacketConstants::maxLength()";
inline constexpr const char* vsaValueTooLong =
    R"(false && " VsaConstants::vendorAttrMaxLength (249) ")"
    R"( " Attribute Type ( 1 ), Attribute Length ( 1 ),  Vendor Id ( 4 ) ")"
    R"( " So, VSA subAttrLength should be less than or equal to ")"
    R"( " AttributeConstants::maxLength ( 255 ) - 6 ")";
inline constexpr const char* vsaLengthsDiffer =
    "( *( ptr + AttributeConstants::lengthOffset() ) - *( ptr + "
    "VsaConstants::vendorAttrLengthOffset() ) == VsaConstants::vendorTypeOffset() ) && "
    R"(" Length of vendor specific attribute - length of sub-attribute = 6 ")";

inline constexpr const char* notOfDigestLength = "digestLen == PacketConstants::authLength()";
inline constexpr const char* notOfHmacLength =
    "md5Ptr && len == AttributeConstants::msgAuthLength()";
inline constexpr const char* authenticatorTooShort = "bytesCopied == PacketConstants::authLength()";
inline constexpr const char* reqAuthOfRequest = "reqAuth.empty()";
inline constexpr const char* noReqAuthOfResponse = "reqAuth";

}  // namespace TestSupport::LegacyTexts
