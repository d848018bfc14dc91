#include "RadiusPacketParser/RadiusPacketConstants.h"

#include <cstddef>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "Tyl/TextReader.h"
#include "Verda/Exception.h"

#include "tests/support/ThrownText.h"

namespace {

using namespace RadiusPacketParser;
using TestSupport::thrownText;
using Verda::RangeError;
using Verda::S32;
using Verda::S64;
using Verda::String;
using Verda::U32;
using Verda::U8;

/// One enumerator as the protocol has it.
template <typename EnumType>
struct Row {
  std::string_view name;
  S64 number;
  EnumType enumerator;
};

/// What is known of a holder besides its rows, and its conversions under names alike for all.
#define HOLDER_FACTS(HolderType, StorageType, NumberType) \
  using Holder = HolderType;                              \
  using Enum = HolderType::HolderType##Enum;              \
  using Storage = StorageType;                            \
  using Number = NumberType;                              \
  static constexpr std::string_view name = #HolderType;   \
  static Enum instance(const String& text) {              \
    return Holder::HolderType##EnumInstance(text);        \
  }                                                       \
  static Enum instance(Number number) {                   \
    return Holder::HolderType##EnumInstance(number);      \
  }

struct RadiusCodeFacts {
  HOLDER_FACTS(RadiusCode, U8, U32)
  static constexpr Row<Enum> rows[] = {
      {"ACCESS_REQUEST", 1, Holder::ACCESS_REQUEST},
      {"ACCESS_ACCEPT", 2, Holder::ACCESS_ACCEPT},
      {"ACCESS_REJECT", 3, Holder::ACCESS_REJECT},
      {"ACCOUNTING_REQUEST", 4, Holder::ACCOUNTING_REQUEST},
      {"ACCOUNTING_RESPONSE", 5, Holder::ACCOUNTING_RESPONSE},
      {"ACCOUNTING_STATUS", 6, Holder::ACCOUNTING_STATUS},
      {"PASSWORD_REQUEST", 7, Holder::PASSWORD_REQUEST},
      {"PASSWORD_ACK", 8, Holder::PASSWORD_ACK},
      {"PASSWORD_REJECT", 9, Holder::PASSWORD_REJECT},
      {"ACCOUNTING_MESSAGE", 10, Holder::ACCOUNTING_MESSAGE},
      {"ACCESS_CHALLENGE", 11, Holder::ACCESS_CHALLENGE},
      {"STATUS_SERVER", 12, Holder::STATUS_SERVER},
      {"STATUS_CLIENT", 13, Holder::STATUS_CLIENT},
      {"DISCONNECT_REQUEST", 40, Holder::DISCONNECT_REQUEST},
      {"DISCONNECT_ACK", 41, Holder::DISCONNECT_ACK},
      {"DISCONNECT_NAK", 42, Holder::DISCONNECT_NAK},
      {"COA_REQUEST", 43, Holder::COA_REQUEST},
      {"COA_ACK", 44, Holder::COA_ACK},
      {"COA_NAK", 45, Holder::COA_NAK},
  };
};

struct RadiusAttributeIdFacts {
  HOLDER_FACTS(RadiusAttributeId, U8, U32)
  static constexpr Row<Enum> rows[] = {
      {"USER_NAME", 1, Holder::USER_NAME},
      {"USER_PASSWORD", 2, Holder::USER_PASSWORD},
      {"CHAP_PASSWORD", 3, Holder::CHAP_PASSWORD},
      {"NAS_IP_ADDRESS", 4, Holder::NAS_IP_ADDRESS},
      {"NAS_PORT", 5, Holder::NAS_PORT},
      {"SERVICE_TYPE", 6, Holder::SERVICE_TYPE},
      {"FRAMED_PROTOCOL", 7, Holder::FRAMED_PROTOCOL},
      {"FRAMED_IP_ADDRESS", 8, Holder::FRAMED_IP_ADDRESS},
      {"FRAMED_IP_NETMASK", 9, Holder::FRAMED_IP_NETMASK},
      {"FRAMED_ROUTING", 10, Holder::FRAMED_ROUTING},
      {"FILTER_ID", 11, Holder::FILTER_ID},
      {"FRAMED_MTU", 12, Holder::FRAMED_MTU},
      {"FRAMED_COMPRESSION", 13, Holder::FRAMED_COMPRESSION},
      {"LOGIN_IP_HOST", 14, Holder::LOGIN_IP_HOST},
      {"LOGIN_SERVICE", 15, Holder::LOGIN_SERVICE},
      {"LOGIN_TCP_PORT", 16, Holder::LOGIN_TCP_PORT},
      {"REPLY_MESSAGE", 18, Holder::REPLY_MESSAGE},
      {"CALLBACK_NUMBER", 19, Holder::CALLBACK_NUMBER},
      {"CALLBACK_ID", 20, Holder::CALLBACK_ID},
      {"FRAMED_ROUTE", 22, Holder::FRAMED_ROUTE},
      {"FRAMED_IPX_NETWORK", 23, Holder::FRAMED_IPX_NETWORK},
      {"STATE", 24, Holder::STATE},
      {"CLASS", 25, Holder::CLASS},
      {"VENDOR_SPECIFIC", 26, Holder::VENDOR_SPECIFIC},
      {"SESSION_TIMEOUT", 27, Holder::SESSION_TIMEOUT},
      {"IDLE_TIMEOUT", 28, Holder::IDLE_TIMEOUT},
      {"TERMINATION_ACTION", 29, Holder::TERMINATION_ACTION},
      {"CALLED_STATION_ID", 30, Holder::CALLED_STATION_ID},
      {"CALLING_STATION_ID", 31, Holder::CALLING_STATION_ID},
      {"NAS_IDENTIFIER", 32, Holder::NAS_IDENTIFIER},
      {"PROXY_STATE", 33, Holder::PROXY_STATE},
      {"LOGIN_LAT_SERVICE", 34, Holder::LOGIN_LAT_SERVICE},
      {"LOGIN_LAT_NODE", 35, Holder::LOGIN_LAT_NODE},
      {"LOGIN_LAT_GROUP", 36, Holder::LOGIN_LAT_GROUP},
      {"FRAMED_APPLETALK_LINK", 37, Holder::FRAMED_APPLETALK_LINK},
      {"FRAMED_APPLETALK_NETWORK", 38, Holder::FRAMED_APPLETALK_NETWORK},
      {"FRAMED_APPLETALK_ZONE", 39, Holder::FRAMED_APPLETALK_ZONE},
      {"ACCT_STATUS_TYPE", 40, Holder::ACCT_STATUS_TYPE},
      {"ACCT_DELAY_TIME", 41, Holder::ACCT_DELAY_TIME},
      {"ACCT_INPUT_OCTETS", 42, Holder::ACCT_INPUT_OCTETS},
      {"ACCT_OUTPUT_OCTETS", 43, Holder::ACCT_OUTPUT_OCTETS},
      {"ACCT_SESSION_ID", 44, Holder::ACCT_SESSION_ID},
      {"ACCT_AUTHENTIC", 45, Holder::ACCT_AUTHENTIC},
      {"ACCT_SESSION_TIME", 46, Holder::ACCT_SESSION_TIME},
      {"ACCT_INPUT_PACKETS", 47, Holder::ACCT_INPUT_PACKETS},
      {"ACCT_OUTPUT_PACKETS", 48, Holder::ACCT_OUTPUT_PACKETS},
      {"ACCT_TERMINATE_CAUSE", 49, Holder::ACCT_TERMINATE_CAUSE},
      {"ACCT_MULTI_SESSION_ID", 50, Holder::ACCT_MULTI_SESSION_ID},
      {"ACCT_LINK_COUNT", 51, Holder::ACCT_LINK_COUNT},
      {"EVENT_TIMESTAMP", 55, Holder::EVENT_TIMESTAMP},
      {"CHAP_CHALLENGE", 60, Holder::CHAP_CHALLENGE},
      {"NAS_PORT_TYPE", 61, Holder::NAS_PORT_TYPE},
      {"PORT_LIMIT", 62, Holder::PORT_LIMIT},
      {"LOGIN_LAT_PORT", 63, Holder::LOGIN_LAT_PORT},
      {"TUNNEL_TYPE", 64, Holder::TUNNEL_TYPE},
      {"TUNNEL_MEDIUM_TYPE", 65, Holder::TUNNEL_MEDIUM_TYPE},
      {"CONNECT_INFO", 77, Holder::CONNECT_INFO},
      {"EAP_MESSAGE", 79, Holder::EAP_MESSAGE},
      {"MESSAGE_AUTHENTICATOR", 80, Holder::MESSAGE_AUTHENTICATOR},
      {"TUNNEL_PRIVATE_GROUP_ID", 81, Holder::TUNNEL_PRIVATE_GROUP_ID},
      {"NAS_PORT_ID", 87, Holder::NAS_PORT_ID},
      {"NAS_FILTER_RULE", 92, Holder::NAS_FILTER_RULE},
      {"NAS_IPV6_ADDRESS", 95, Holder::NAS_IPV6_ADDRESS},
      {"FRAMED_INTERFACE_ID", 96, Holder::FRAMED_INTERFACE_ID},
      {"FRAMED_IPV6_PREFIX", 97, Holder::FRAMED_IPV6_PREFIX},
      {"LOGIN_IPV6_HOST", 98, Holder::LOGIN_IPV6_HOST},
      {"FRAMED_IPV6_ROUTE", 99, Holder::FRAMED_IPV6_ROUTE},
      {"FRAMED_IPV6_POOL", 100, Holder::FRAMED_IPV6_POOL},
      {"ERROR_CAUSE", 101, Holder::ERROR_CAUSE},
      {"EAP_KEY_NAME", 102, Holder::EAP_KEY_NAME},
      {"FRAMED_IPV6_ADDRESS", 168, Holder::FRAMED_IPV6_ADDRESS},
  };
};

struct RadiusAccountingStatusFacts {
  HOLDER_FACTS(RadiusAccountingStatus, U8, U32)
  static constexpr Row<Enum> rows[] = {
      {"START", 1, Holder::START},
      {"STOP", 2, Holder::STOP},
      {"INTERIM_UPDATE", 3, Holder::INTERIM_UPDATE},
      {"ON", 7, Holder::ON},
      {"OFF", 8, Holder::OFF},
      {"TUNNEL_START", 9, Holder::TUNNEL_START},
      {"TUNNEL_STOP", 10, Holder::TUNNEL_STOP},
      {"TUNNEL_REJECT", 11, Holder::TUNNEL_REJECT},
      {"TUNNEL_LINK_START", 12, Holder::TUNNEL_LINK_START},
      {"TUNNEL_LINK_STOP", 13, Holder::TUNNEL_LINK_STOP},
      {"TUNNEL_LINK_REJECT", 14, Holder::TUNNEL_LINK_REJECT},
      {"FAILED", 15, Holder::FAILED},
  };
};

struct RadiusDynAuthErrorCodeFacts {
  HOLDER_FACTS(RadiusDynAuthErrorCode, U32, U32)
  static constexpr Row<Enum> rows[] = {
      {"SUCCESS", 200, Holder::SUCCESS},
      {"BADREQP", 1, Holder::BADREQP},
      {"UNSUPPORTED_ATTRIBUTE", 401, Holder::UNSUPPORTED_ATTRIBUTE},
      {"MISSING_ATTRIBUTE", 402, Holder::MISSING_ATTRIBUTE},
      {"NAS_MISMATCH", 403, Holder::NAS_MISMATCH},
      {"INVALID_REQUEST", 404, Holder::INVALID_REQUEST},
      {"INVALID_ATTRIBUTE_VALUE", 407, Holder::INVALID_ATTRIBUTE_VALUE},
      {"SESSION_CONTEXT_NOT_FOUND", 503, Holder::SESSION_CONTEXT_NOT_FOUND},
      {"RESOURCE_UNAVAILABLE", 506, Holder::RESOURCE_UNAVAILABLE},
  };
};

struct RadiusVendorIdFacts {
  HOLDER_FACTS(RadiusVendorId, U32, U32)
  static constexpr Row<Enum> rows[] = {
      {"QUORIN", 32473, Holder::QUORIN},
      {"MS", 311, Holder::MS},
  };
};

struct QuorinVendorSpecFacts {
  HOLDER_FACTS(QuorinVendorSpec, U8, U32)
  static constexpr Row<Enum> rows[] = {
      {"WEBAUTH", 6, Holder::WEBAUTH},
      {"BLOCKMAC", 7, Holder::BLOCKMAC},
      {"UNBLOCKMAC", 8, Holder::UNBLOCKMAC},
      {"PORTFLAP", 9, Holder::PORTFLAP},
      {"CAPTIVE_PORTAL", 10, Holder::CAPTIVE_PORTAL},
      {"SEGMENT_ID", 11, Holder::SEGMENT_ID},
      {"ORIGIN_IDENTIFIER", 12, Holder::ORIGIN_IDENTIFIER},
      {"PERIODIC_IDENTITY", 13, Holder::PERIODIC_IDENTITY},
      {"DYNAMIC_HOST_MODE", 14, Holder::DYNAMIC_HOST_MODE},
      {"DEVICE_TYPE", 15, Holder::DEVICE_TYPE},
      {"ACTION", 16, Holder::ACTION},
      {"DEVICE_PROFILING", 17, Holder::DEVICE_PROFILING},
      {"PORT_SHUTDOWN", 18, Holder::PORT_SHUTDOWN},
      {"MVRP", 19, Holder::MVRP},
      {"TENANT_ID", 20, Holder::TENANT_ID},
      {"INTERFACE_PROFILE", 21, Holder::INTERFACE_PROFILE},
      {"CONFIG_VLAN", 22, Holder::CONFIG_VLAN},
      {"FORBID_AUTHTYPE", 23, Holder::FORBID_AUTHTYPE},
  };
};

struct MSVendorSpecFacts {
  HOLDER_FACTS(MSVendorSpec, U8, U32)
  static constexpr Row<Enum> rows[] = {
      {"MPPE_SEND_KEY", 16, Holder::MPPE_SEND_KEY},
      {"MPPE_RECV_KEY", 17, Holder::MPPE_RECV_KEY},
  };
};

struct RadiusReturnCodeFacts {
  HOLDER_FACTS(RadiusReturnCode, S32, S32)
  static constexpr Row<Enum> rows[] = {
      {"BADRESP", -2, Holder::BADRESP},
      {"ERROR", -1, Holder::ERROR},
      {"OK", 0, Holder::OK},
      {"TIMEOUT", 1, Holder::TIMEOUT},
      {"REJECT", 2, Holder::REJECT},
      {"CHALLENGE", 3, Holder::CHALLENGE},
  };
};

struct RadiusCountersFacts {
  HOLDER_FACTS(RadiusCounters, U8, U32)
  static constexpr Row<Enum> rows[] = {
      {"AUTHN_SEND", 0, Holder::AUTHN_SEND},
      {"AUTHN_RECV", 1, Holder::AUTHN_RECV},
      {"AUTHN_ACCEPT", 2, Holder::AUTHN_ACCEPT},
      {"AUTHN_REJECT", 3, Holder::AUTHN_REJECT},
      {"AUTHN_CHALLENGE", 4, Holder::AUTHN_CHALLENGE},
      {"AUTHN_UNRESOLVABLE", 5, Holder::AUTHN_UNRESOLVABLE},
      {"AUTHN_TIMEOUT", 6, Holder::AUTHN_TIMEOUT},
      {"AUTHN_RETRANSMIT", 7, Holder::AUTHN_RETRANSMIT},
      {"AUTHN_BADRESP", 8, Holder::AUTHN_BADRESP},
      {"AUTHN_CONNECTION_ERROR", 9, Holder::AUTHN_CONNECTION_ERROR},
      {"COA_REQUEST", 10, Holder::COA_REQUEST},
      {"DM_REQUEST", 11, Holder::DM_REQUEST},
      {"COA_ACK_SEND", 12, Holder::COA_ACK_SEND},
      {"DM_ACK_SEND", 13, Holder::DM_ACK_SEND},
      {"COA_NAK_SEND", 14, Holder::COA_NAK_SEND},
      {"DM_NAK_SEND", 15, Holder::DM_NAK_SEND},
      {"DM_ERROR", 16, Holder::DM_ERROR},
      {"COA_ERROR", 17, Holder::COA_ERROR},
      {"ACCT_START_SEND", 18, Holder::ACCT_START_SEND},
      {"ACCT_INTERIM_SEND", 19, Holder::ACCT_INTERIM_SEND},
      {"ACCT_STOP_SEND", 20, Holder::ACCT_STOP_SEND},
      {"ACCT_RESPONSE_OK", 21, Holder::ACCT_RESPONSE_OK},
      {"ACCT_RESPONSE_ERROR", 22, Holder::ACCT_RESPONSE_ERROR},
      {"COA_UNSUPPORTED_VSA_ONLY", 23, Holder::COA_UNSUPPORTED_VSA_ONLY},
      {"DM_UNSUPPORTED_VSA_ONLY", 24, Holder::DM_UNSUPPORTED_VSA_ONLY},
      {"ACCESS_ACCEPT_UNSUPPORTED_VSA_ONLY", 25, Holder::ACCESS_ACCEPT_UNSUPPORTED_VSA_ONLY},
      {"AUTHN_REQUEST_SEND", 26, Holder::AUTHN_REQUEST_SEND},
  };
};

struct RadiusServiceTypeValueFacts {
  HOLDER_FACTS(RadiusServiceTypeValue, U8, U32)
  static constexpr Row<Enum> rows[] = {
      {"LOGIN", 1, Holder::LOGIN},
      {"FRAMED", 2, Holder::FRAMED},
      {"CALLBACK_LOGIN", 3, Holder::CALLBACK_LOGIN},
      {"CALLBACK_FRAMED", 4, Holder::CALLBACK_FRAMED},
      {"OUTBOUND", 5, Holder::OUTBOUND},
      {"ADMINISTRATIVE", 6, Holder::ADMINISTRATIVE},
      {"NAS_PROMPT", 7, Holder::NAS_PROMPT},
      {"AUTHENTICATE_ONLY", 8, Holder::AUTHENTICATE_ONLY},
      {"CALLBACK_NAS_PROMPT", 9, Holder::CALLBACK_NAS_PROMPT},
      {"CALL_CHECK", 10, Holder::CALL_CHECK},
      {"CALLBACK_ADMINISTRATIVE", 11, Holder::CALLBACK_ADMINISTRATIVE},
  };
};
#undef HOLDER_FACTS

template <typename Facts>
bool isEnumerator(S64 number) {
  for (const auto& row : Facts::rows) {
    if (row.number == number) {
      return true;
    }
  }
  return false;
}

template <typename Enum>
std::string printed(Enum value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

struct HolderName {
  template <typename Facts>
  static std::string GetName(int) {
    return std::string(Facts::name);
  }
};

template <typename Facts>
class ProtocolEnumeration : public testing::Test {};

using AllHolders =
    testing::Types<RadiusCodeFacts, RadiusAttributeIdFacts, RadiusAccountingStatusFacts,
                   RadiusDynAuthErrorCodeFacts, RadiusVendorIdFacts, QuorinVendorSpecFacts,
                   MSVendorSpecFacts, RadiusReturnCodeFacts, RadiusCountersFacts,
                   RadiusServiceTypeValueFacts>;
TYPED_TEST_SUITE(ProtocolEnumeration, AllHolders, HolderName);

TYPED_TEST(ProtocolEnumeration, HasTheStorageOfItsNumbers) {
  static_assert(std::is_same_v<std::underlying_type_t<typename TypeParam::Enum>,
                               typename TypeParam::Storage>);
}

TYPED_TEST(ProtocolEnumeration, RegistersItsRowsInDeclaredOrder) {
  const Tyl::EnumerationTable& table = TypeParam::Holder::enumerationTable();
  EXPECT_EQ(table.name, TypeParam::name);
  EXPECT_EQ(&enumerationTableOf(TypeParam::rows[0].enumerator), &table);
  ASSERT_EQ(table.enumerators.size(), std::size(TypeParam::rows));
  for (std::size_t at = 0; at < table.enumerators.size(); ++at) {
    EXPECT_EQ(table.enumerators[at].name, TypeParam::rows[at].name);
    EXPECT_EQ(table.enumerators[at].number, TypeParam::rows[at].number);
  }
}

TYPED_TEST(ProtocolEnumeration, ConvertsEveryRowBothWays) {
  for (const auto& row : TypeParam::rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(static_cast<S64>(row.enumerator), row.number);
    EXPECT_EQ(stringValue(row.enumerator), row.name);
    EXPECT_EQ(printed(row.enumerator), row.name);
    EXPECT_EQ(TypeParam::instance(String(row.name)), row.enumerator);
    EXPECT_EQ(TypeParam::instance(static_cast<typename TypeParam::Number>(row.number)),
              row.enumerator);
    EXPECT_EQ(TypeParam::instance(stringValue(row.enumerator)), row.enumerator);
  }
}

TYPED_TEST(ProtocolEnumeration, ReadsEveryNameFromText) {
  for (const auto& row : TypeParam::rows) {
    SCOPED_TRACE(row.name);
    const std::string text = fmt::format(" {}, ", row.name);
    Tyl::TextReader reader(text);
    typename TypeParam::Enum result{};
    sequenceToValue(reader, result);
    EXPECT_EQ(result, row.enumerator);
    EXPECT_TRUE(reader.take(','));
    EXPECT_TRUE(reader.atEnd());
  }
}

TYPED_TEST(ProtocolEnumeration, RefusesEveryOtherNumberNamingIt) {
  using Number = typename TypeParam::Number;
  constexpr S64 first = std::is_signed_v<Number> ? -1'000 : 0;
  for (S64 number = first; number <= 1'000; ++number) {
    if (!isEnumerator<TypeParam>(number)) {
      ASSERT_EQ(
          thrownText<RangeError>([number] { TypeParam::instance(static_cast<Number>(number)); }),
          fmt::format("{}: {} is not an enumerator", TypeParam::name, number));
    }
  }
  for (const Number number : {std::numeric_limits<Number>::max(), static_cast<Number>(65'537)}) {
    EXPECT_EQ(thrownText<RangeError>([number] { TypeParam::instance(number); }),
              fmt::format("{}: {} is not an enumerator", TypeParam::name, number));
  }
}

TYPED_TEST(ProtocolEnumeration, PrintsEveryOtherNumberInBrackets) {
  for (S64 number = 0; number <= 255; ++number) {
    if (!isEnumerator<TypeParam>(number)) {
      const auto value = static_cast<typename TypeParam::Enum>(number);
      const std::string expected = fmt::format("{}({})", TypeParam::name, number);
      ASSERT_EQ(stringValue(value), expected);
      ASSERT_EQ(printed(value), expected);
    }
  }
}

TYPED_TEST(ProtocolEnumeration, RefusesOtherNamesNamingThem) {
  const std::string known(TypeParam::rows[0].name);
  std::string lower = known;
  for (char& letter : lower) {
    letter = letter == '_' ? letter : static_cast<char>(letter | 0x20);
  }
  for (const std::string& text :
       {std::string(), std::string("NO_SUCH_NAME"), lower, known + " ", " " + known,
        known.substr(0, known.size() - 1), known + "S", std::string("1")}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(thrownText<RangeError>([&text] { TypeParam::instance(String(text)); }),
              fmt::format("{}: \"{}\" is not an enumerator", TypeParam::name, text));
  }
  EXPECT_EQ(thrownText<RangeError>([&known] { TypeParam::instance(String(known + '\0')); }),
            fmt::format("{}: \"{}\\x00\" is not an enumerator", TypeParam::name, known));
}

TYPED_TEST(ProtocolEnumeration, KeepsTheResultWhenTheTextHoldsAnotherName) {
  const auto& last = TypeParam::rows[std::size(TypeParam::rows) - 1];
  auto result = last.enumerator;
  const auto read = [&result] {
    Tyl::TextReader reader("NO_SUCH_NAME");
    sequenceToValue(reader, result);
  };
  EXPECT_EQ(thrownText<RangeError>(read),
            fmt::format("{}: \"NO_SUCH_NAME\" is not an enumerator", TypeParam::name));
  EXPECT_EQ(result, last.enumerator);
}

TEST(ProtocolEnumerations, AreTenOfTheirKnownSizes) {
  EXPECT_EQ(std::size(RadiusCodeFacts::rows), 19U);
  EXPECT_EQ(std::size(RadiusAttributeIdFacts::rows), 71U);
  EXPECT_EQ(std::size(RadiusAccountingStatusFacts::rows), 12U);
  EXPECT_EQ(std::size(RadiusDynAuthErrorCodeFacts::rows), 9U);
  EXPECT_EQ(std::size(RadiusVendorIdFacts::rows), 2U);
  EXPECT_EQ(std::size(QuorinVendorSpecFacts::rows), 18U);
  EXPECT_EQ(std::size(MSVendorSpecFacts::rows), 2U);
  EXPECT_EQ(std::size(RadiusReturnCodeFacts::rows), 6U);
  EXPECT_EQ(std::size(RadiusCountersFacts::rows), 27U);
  EXPECT_EQ(std::size(RadiusServiceTypeValueFacts::rows), 11U);
}

TEST(RadiusCode, PrintsAnUnknownCodeWithItsNumber) {
  EXPECT_EQ(printed(static_cast<RadiusCode::RadiusCodeEnum>(14)), "RadiusCode(14)");
}

TEST(RadiusCode, SharesTheNameCoaRequestWithRadiusCountersWithoutCollision) {
  EXPECT_EQ(stringValue(RadiusCode::RadiusCodeEnumInstance(43)), "COA_REQUEST");
  EXPECT_EQ(RadiusCode::RadiusCodeEnumInstance("COA_REQUEST"), RadiusCode::COA_REQUEST);
  EXPECT_EQ(RadiusCode::COA_REQUEST, 43);
  EXPECT_EQ(stringValue(RadiusCounters::RadiusCountersEnumInstance(10)), "COA_REQUEST");
  EXPECT_EQ(RadiusCounters::RadiusCountersEnumInstance("COA_REQUEST"), RadiusCounters::COA_REQUEST);
  EXPECT_EQ(RadiusCounters::COA_REQUEST, 10);
}

TEST(RadiusReturnCode, ConvertsNegativeNumbersBothWays) {
  EXPECT_EQ(printed(RadiusReturnCode::RadiusReturnCodeEnumInstance(-2)), "BADRESP");
  EXPECT_EQ(RadiusReturnCode::RadiusReturnCodeEnumInstance("BADRESP"), -2);
  EXPECT_EQ(thrownText<RangeError>([] { RadiusReturnCode::RadiusReturnCodeEnumInstance(-3); }),
            "RadiusReturnCode: -3 is not an enumerator");
  EXPECT_EQ(printed(static_cast<RadiusReturnCode::RadiusReturnCodeEnum>(-3)),
            "RadiusReturnCode(-3)");
}

TEST(RadiusDynAuthErrorCode, HoldsNumbersThatDoNotFitInEightBits) {
  EXPECT_EQ(RadiusDynAuthErrorCode::RadiusDynAuthErrorCodeEnumInstance("RESOURCE_UNAVAILABLE"),
            506U);
  EXPECT_EQ(stringValue(RadiusDynAuthErrorCode::RadiusDynAuthErrorCodeEnumInstance(506)),
            "RESOURCE_UNAVAILABLE");
  EXPECT_EQ(sizeof(RadiusDynAuthErrorCode::RadiusDynAuthErrorCodeEnum), 4U);
}

TEST(RadiusVendorId, HoldsNumbersThatDoNotFitInEightBits) {
  EXPECT_EQ(RadiusVendorId::RadiusVendorIdEnumInstance("MS"), 311U);
  EXPECT_EQ(RadiusVendorId::RadiusVendorIdEnumInstance(311), RadiusVendorId::MS);
  EXPECT_EQ(sizeof(RadiusVendorId::RadiusVendorIdEnum), 4U);
}

TEST(RadiusVendorId, NumbersQuorinInOnePlace) {
  EXPECT_EQ(RadiusVendorId::QUORIN, quorinVendorNumber);
  EXPECT_EQ(quorinVendorNumber, 32473U);
}

}  // namespace
