#pragma once

#include <ostream>
#include <string>

#include "Tyl/Accessors.h"
#include "Tyl/Entity.h"
#include "Tyl/Enumeration.h"
#include "Verda/Export.h"
#include "Verda/Ptr.h"
#include "Verda/String.h"
#include "Verda/Types.h"

/// The dictionary: which attributes exist, under which names, of which data type, and whether they
/// are tagged, hidden or split over several attributes; and the parser that loads it from files.
///
/// A dictionary is filled once, by `RadiusDictionaryParser`, and then shared read-only by any
/// number of codecs on any number of threads.
namespace RadiusPacketParser {

/// The data types of the dictionary's type words; `unknown` is what any other word gives.
#define RADIUS_ATTRIBUTE_TYPE_LIST(X) \
  X(unknown, 0)                       \
  X(string, 1)                        \
  X(octets, 2)                        \
  X(ipaddr, 3)                        \
  X(date, 4)                          \
  X(integer, 5)                       \
  X(ipv6addr, 6)                      \
  X(ipv6prefix, 7)                    \
  X(ifid, 8)                          \
  X(integer64, 9)

TYL_ENUMERATION_HOLDER(RadiusAttributeType, ::Verda::U8, ::Verda::U32, RADIUS_ATTRIBUTE_TYPE_LIST)

/// What the dictionary says of one attribute, standard or vendor.
class VERDA_EXPORT RadiusNode : public Verda::Node {
 public:
  const Verda::TypeData& typeData() const override;

  /// An entry of that type number, without a name and of unknown type.
  explicit RadiusNode(Verda::U8 attributeOid) : attributeOid_(attributeOid) {}

  /// The name on the dictionary line.
  TYL_ATTRIBUTE(Verda::String, attributeName, {})
  /// The type number on the wire; the entry's key.
  TYL_FIXED_ATTRIBUTE(Verda::U8, attributeOid)
  /// The data type.
  TYL_ATTRIBUTE(RadiusAttributeType::RadiusAttributeTypeEnum, attributeType,
                RadiusAttributeType::unknown)
  /// The digit of the flag "encrypt="; 0 when the value is not hidden.
  TYL_ATTRIBUTE(Verda::U8, attributeEncryptionType, 0)
  /// Whether the value carries a leading tag byte (flag "has_tag", RFC 2868).
  TYL_ATTRIBUTE(bool, hasTag, false)
  /// Whether a long value is split over consecutive attributes (flag "concat").
  TYL_ATTRIBUTE(bool, concat, false)
};

/// A standard attribute.
class VERDA_EXPORT AttributeNode : public RadiusNode {
  TYL_ENTITY(AttributeNode)

 public:
  /// As `RadiusNode`.
  using RadiusNode::RadiusNode;

  /// The path of the file whose line defined the attribute last.
  TYL_ATTRIBUTE(Verda::String, path, {})
};

/// An attribute of one vendor; `attributeOid` is the vendor type inside the Vendor-Specific
/// attribute.
class VERDA_EXPORT VendorNode : public RadiusNode {
  TYL_ENTITY(VendorNode)

 public:
  /// As `RadiusNode`.
  using RadiusNode::RadiusNode;
};

/// The attributes of one vendor.
class VERDA_EXPORT VendorIdDict : public Verda::Node {
  TYL_ENTITY(VendorIdDict)

 public:
  /// A vendor without a name and without attributes.
  explicit VendorIdDict(Verda::U32 vendorId) : vendorId_(vendorId) {}

  /// The vendor's enterprise number; the key.
  TYL_FIXED_ATTRIBUTE(Verda::U32, vendorId)
  /// The name on the vendor line.
  TYL_ATTRIBUTE(Verda::String, vendorName, {})
  /// The path of the file that defined the vendor last.
  TYL_ATTRIBUTE(Verda::String, path, {})
  /// The vendor's attributes by vendor type.
  TYL_ENTITY_COLLECTION(HashMap, Verda::U8, VendorNode, vendorNodeDict, TylVendorNodeDict)
};

/// The whole dictionary.
class VERDA_EXPORT RadiusDict : public Verda::Node {
  TYL_ENTITY(RadiusDict)

 public:
  RadiusDict() = default;

  /// The standard attributes by type number.
  TYL_ENTITY_COLLECTION(HashMap, Verda::U8, AttributeNode, radiusAttribute, TylRadiusAttribute)
  /// One dictionary per vendor, by enterprise number.
  TYL_ENTITY_COLLECTION(HashMap, Verda::U32, VendorIdDict, vendorAttribute, TylVendorAttribute)
};

/// The vendors that the included files declare: name to enterprise number.
class VERDA_EXPORT VendorMap : public Verda::Node {
  TYL_ENTITY(VendorMap)

 public:
  VendorMap() = default;

  /// The vendors' numbers by name.
  TYL_VALUE_COLLECTION(HashMap, Verda::String, Verda::U32, vendorNameToId, TylVendorNameToId)
};

TYL_FACTORY(attributeNodeFactory, AttributeNode)
TYL_FACTORY(vendorNodeFactory, VendorNode)
TYL_FACTORY(vendorIdDictFactory, VendorIdDict)
TYL_FACTORY(radiusDictFactory, RadiusDict)
TYL_FACTORY(vendorMapFactory, VendorMap)

/// Cuts `line` at its first `#`.
VERDA_EXPORT void removeComments(std::string& line);

/// Parses every file that the top file includes into `dictionary`, in the order of its lines. The
/// vendor map must be filled already. Problems are traced; those that are not mere warnings fail an
/// assertion, which ends the process.
/// @param directory  what included names are appended to: empty, or ending with `/`
/// @param path       the top file
VERDA_EXPORT void parseDictionary(const Verda::Ptr<RadiusDict>& dictionary,
                                  const Verda::Ptr<VendorMap>& vendorMap,
                                  const Verda::String& directory, const Verda::String& path);

/// Parses one included file, of standard attributes or of a vendor. Fails as `parseDictionary`.
VERDA_EXPORT void dictionaryParsingHelper(const Verda::String& path,
                                          const Verda::Ptr<RadiusDict>& dictionary,
                                          const Verda::Ptr<VendorMap>& vendorMap);

/// Parses one `ATTRIBUTE` line of a standard-attribute file. Fails as `parseDictionary`.
/// @param path  the file, for messages and for the entry
/// @param line  the whole line without its comment
VERDA_EXPORT void attributeParsingHelper(const Verda::String& path, const Verda::String& line,
                                         const Verda::Ptr<RadiusDict>& dictionary);

/// Parses a whole vendor file from its first line. Fails as `parseDictionary`.
VERDA_EXPORT void vendorAttributeParsingHelper(const Verda::String& path,
                                               const Verda::Ptr<RadiusDict>& dictionary,
                                               const Verda::Ptr<VendorMap>& vendorMap);

/// Fills the vendor map from the first line of each file that the top file includes. Fails as
/// `parseDictionary`.
/// @param directory  what included names are appended to: empty, or ending with `/`
/// @param path       the top file
VERDA_EXPORT void populateVendorMap(const Verda::Ptr<VendorMap>& vendorMap,
                                    const Verda::String& directory, const Verda::String& path);

/// Adds the vendor of one included file to the vendor map when the file's first line with tokens is
/// a `VENDOR` line. Fails as `parseDictionary`.
VERDA_EXPORT void updateMap(const Verda::Ptr<VendorMap>& vendorMap, const Verda::String& path);

/// Loads a dictionary while it is created: whoever gets the object back has a whole dictionary.
///
/// Errors in the files never reach the caller: each is traced at level 0 under the facility
/// "RadiusPacketParser::RadiusDictionaryParser" and then fails an assertion, which ends the
/// process. There is no reload: to load again, create another.
class VERDA_EXPORT RadiusDictionaryParser : public Verda::Node {
  TYL_ENTITY(RadiusDictionaryParser)

 public:
  /// @param path  the top file; the files that it includes are looked up in its directory
  explicit RadiusDictionaryParser(const Verda::String& path);

  /// The path of the top file.
  TYL_FIXED_ATTRIBUTE(Verda::String, path)
  /// The loaded dictionary.
  TYL_ENTITY_ATTRIBUTE(RadiusDict, dictionary)
  /// The vendors that the included files declare.
  TYL_ENTITY_ATTRIBUTE(VendorMap, vendorMap)
  /// The paths of the files that the top file includes, in the order of its lines.
  TYL_SEQUENCE(Verda::String, includedFiles)

  /// Loads the files into `dictionary` and `vendorMap`; the constructor runs it. Run again, it
  /// parses them into the same dictionary once more.
  void handleInitialized();
};

TYL_FACTORY(radiusDictionaryParserFactory, RadiusDictionaryParser)

}  // namespace RadiusPacketParser
