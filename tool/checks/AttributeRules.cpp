#include "tool/checks/AttributeRules.h"

#include <algorithm>
#include <optional>

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusCode;
using Verda::U8;

namespace {

// As the RFCs write them, and a dash where a table says nothing.
constexpr Quantity dash = Quantity::unsaid;
constexpr Quantity q0 = Quantity::none;
constexpr Quantity q01 = Quantity::atMostOne;
constexpr Quantity q0n = Quantity::any;
constexpr Quantity q1 = Quantity::exactlyOne;

/// How many codes a table has at most.
constexpr std::size_t maxColumns = 5;

struct Row {
  U8 type;
  std::array<Quantity, maxColumns> quantities;  ///< by column
};

/// A table: which code each column is for, and a row for each attribute.
struct Table {
  const char* rfc;
  std::span<const U8> columns;
  std::span<const Row> rows;
};

constexpr auto access =
    std::to_array<U8>({RadiusCode::ACCESS_REQUEST, RadiusCode::ACCESS_ACCEPT,
                       RadiusCode::ACCESS_REJECT, RadiusCode::ACCESS_CHALLENGE});
constexpr auto accessAndAccounting = std::to_array<U8>(
    {RadiusCode::ACCESS_REQUEST, RadiusCode::ACCESS_ACCEPT, RadiusCode::ACCESS_REJECT,
     RadiusCode::ACCESS_CHALLENGE, RadiusCode::ACCOUNTING_REQUEST});
constexpr auto accounting =
    std::to_array<U8>({RadiusCode::ACCOUNTING_REQUEST, RadiusCode::ACCOUNTING_RESPONSE});
constexpr auto dynamicAuthorization = std::to_array<U8>(
    {RadiusCode::DISCONNECT_REQUEST, RadiusCode::DISCONNECT_ACK, RadiusCode::DISCONNECT_NAK});
constexpr auto changeOfAuthorization =
    std::to_array<U8>({RadiusCode::COA_REQUEST, RadiusCode::COA_ACK, RadiusCode::COA_NAK});
constexpr auto statusServer = std::to_array<U8>({RadiusCode::STATUS_SERVER});

// clang-format off

constexpr auto rfc2865 = std::to_array<Row>({
    // Request, Accept, Reject, Challenge
    {1, {q01, q01, q0, q0}},     // User-Name
    {2, {q01, q0, q0, q0}},      // User-Password
    {3, {q01, q0, q0, q0}},      // CHAP-Password
    {4, {q01, q0, q0, q0}},      // NAS-IP-Address
    {5, {q01, q0, q0, q0}},      // NAS-Port
    {6, {q01, q01, q0, q0}},     // Service-Type
    {7, {q01, q01, q0, q0}},     // Framed-Protocol
    {8, {q01, q01, q0, q0}},     // Framed-IP-Address
    {9, {q01, q01, q0, q0}},     // Framed-IP-Netmask
    {10, {q0, q01, q0, q0}},     // Framed-Routing
    {11, {q0, q0n, q0, q0}},     // Filter-Id
    {12, {q01, q01, q0, q0}},    // Framed-MTU
    {13, {q0n, q0n, q0, q0}},    // Framed-Compression
    {14, {q0n, q0n, q0, q0}},    // Login-IP-Host
    {15, {q0, q01, q0, q0}},     // Login-Service
    {16, {q0, q01, q0, q0}},     // Login-TCP-Port
    {18, {q0, q0n, q0n, q0n}},   // Reply-Message
    {19, {q01, q01, q0, q0}},    // Callback-Number
    {20, {q0, q01, q0, q0}},     // Callback-Id
    {22, {q0, q0n, q0, q0}},     // Framed-Route
    {23, {q0, q01, q0, q0}},     // Framed-IPX-Network
    {24, {q01, q01, q0, q01}},   // State
    {25, {q0, q0n, q0, q0}},     // Class
    {27, {q0, q01, q0, q01}},    // Session-Timeout
    {28, {q0, q01, q0, q01}},    // Idle-Timeout
    {29, {q0, q01, q0, q0}},     // Termination-Action
    {30, {q01, q0, q0, q0}},     // Called-Station-Id
    {31, {q01, q0, q0, q0}},     // Calling-Station-Id
    {32, {q01, q0, q0, q0}},     // NAS-Identifier
    {33, {q0n, q0n, q0n, q0n}},  // Proxy-State
    {34, {q01, q01, q0, q0}},    // Login-LAT-Service
    {35, {q01, q01, q0, q0}},    // Login-LAT-Node
    {36, {q01, q01, q0, q0}},    // Login-LAT-Group
    {37, {q0, q01, q0, q0}},     // Framed-AppleTalk-Link
    {38, {q0, q0n, q0, q0}},     // Framed-AppleTalk-Network
    {39, {q0, q01, q0, q0}},     // Framed-AppleTalk-Zone
    {60, {q01, q0, q0, q0}},     // CHAP-Challenge
    {61, {q01, q0, q0, q0}},     // NAS-Port-Type
    {62, {q01, q01, q0, q0}},    // Port-Limit
    {63, {q01, q01, q0, q0}},    // Login-LAT-Port
});

// Of an Accounting-Response it says that nothing but Proxy-State and vendors' attributes should be
// in it; the Reply-Message that answers a Status-Server packet came later (RFC 5997 section 5).
constexpr auto rfc2866 = std::to_array<Row>({
    // Request, Response
    {1, {q01, q0}},    // User-Name
    {2, {q0, q0}},     // User-Password
    {3, {q0, q0}},     // CHAP-Password
    {4, {q01, q0}},    // NAS-IP-Address
    {5, {q01, q0}},    // NAS-Port
    {6, {q01, q0}},    // Service-Type
    {7, {q01, q0}},    // Framed-Protocol
    {8, {q01, q0}},    // Framed-IP-Address
    {9, {q01, q0}},    // Framed-IP-Netmask
    {10, {q01, q0}},   // Framed-Routing
    {11, {q0n, q0}},   // Filter-Id
    {12, {q01, q0}},   // Framed-MTU
    {13, {q0n, q0}},   // Framed-Compression
    {14, {q0n, q0}},   // Login-IP-Host
    {15, {q01, q0}},   // Login-Service
    {16, {q01, q0}},   // Login-TCP-Port
    {18, {q0, dash}},  // Reply-Message
    {19, {q01, q0}},   // Callback-Number
    {20, {q01, q0}},   // Callback-Id
    {22, {q0n, q0}},   // Framed-Route
    {23, {q01, q0}},   // Framed-IPX-Network
    {24, {q0, q0}},    // State
    {25, {q0n, q0}},   // Class
    {27, {q01, q0}},   // Session-Timeout
    {28, {q01, q0}},   // Idle-Timeout
    {29, {q01, q0}},   // Termination-Action
    {30, {q01, q0}},   // Called-Station-Id
    {31, {q01, q0}},   // Calling-Station-Id
    {32, {q01, q0}},   // NAS-Identifier
    {33, {q0n, q0n}},  // Proxy-State
    {34, {q01, q0}},   // Login-LAT-Service
    {35, {q01, q0}},   // Login-LAT-Node
    {36, {q01, q0}},   // Login-LAT-Group
    {40, {q1, q0}},    // Acct-Status-Type
    {41, {q01, q0}},   // Acct-Delay-Time
    {42, {q01, q0}},   // Acct-Input-Octets
    {43, {q01, q0}},   // Acct-Output-Octets
    {44, {q1, q0}},    // Acct-Session-Id
    {45, {q01, q0}},   // Acct-Authentic
    {46, {q01, q0}},   // Acct-Session-Time
    {47, {q01, q0}},   // Acct-Input-Packets
    {48, {q01, q0}},   // Acct-Output-Packets
    {49, {q01, q0}},   // Acct-Terminate-Cause
    {50, {q0n, q0}},   // Acct-Multi-Session-Id
    {51, {q0n, q0}},   // Acct-Link-Count
    {60, {q0, q0}},    // CHAP-Challenge
    {61, {q01, q0}},   // NAS-Port-Type
    {62, {q01, q0}},   // Port-Limit
    {63, {q01, q0}},   // Login-LAT-Port
});

constexpr auto rfc2868 = std::to_array<Row>({
    // Request, Accept, Reject, Challenge, Accounting-Request
    {64, {q0n, q0n, q0, q0, q01}},  // Tunnel-Type
    {65, {q0n, q0n, q0, q0, q01}},  // Tunnel-Medium-Type
    {66, {q0n, q0n, q0, q0, q01}},  // Tunnel-Client-Endpoint
    {67, {q0n, q0n, q0, q0, q01}},  // Tunnel-Server-Endpoint
    {69, {q0, q0n, q0, q0, q0}},    // Tunnel-Password
    {81, {q0n, q0n, q0, q0, q01}},  // Tunnel-Private-Group-Id
    {82, {q0, q0n, q0, q0, q01}},   // Tunnel-Assignment-Id
    {83, {q0n, q0n, q0, q0, q0}},   // Tunnel-Preference
    {90, {q0n, q0n, q0, q0, q01}},  // Tunnel-Client-Auth-Id
    {91, {q0n, q0n, q0, q0, q01}},  // Tunnel-Server-Auth-Id
});

constexpr auto rfc2869 = std::to_array<Row>({
    // Request, Accept, Reject, Challenge, Accounting-Request
    {52, {q0, q0, q0, q0, q01}},         // Acct-Input-Gigawords
    {53, {q0, q0, q0, q0, q01}},         // Acct-Output-Gigawords
    {55, {dash, dash, dash, dash, q01}}, // Event-Timestamp
    {70, {q01, q0, q0, q0, q0}},         // ARAP-Password
    {72, {q0, q01, q0, q0, q0}},         // ARAP-Zone-Access
    {75, {q0, q0, q01, q0, q0}},         // Password-Retry
    {76, {q0, q0, q0, q01, q0}},         // Prompt
    {77, {dash, q0, q0, q0, q0n}},       // Connect-Info
    {78, {q0, q0n, q0, q0, q0}},         // Configuration-Token
    {79, {q0n, q0n, q0n, q0n, q0}},      // EAP-Message
    {85, {q0, q01, q0, q0, q0}},         // Acct-Interim-Interval
    {87, {q01, q0, q0, q0, q01}},        // NAS-Port-Id
    {88, {q0, q01, q0, q0, q0}},         // Framed-Pool
});

constexpr auto rfc3162 = std::to_array<Row>({
    // Request, Accept, Reject, Challenge, Accounting-Request
    {95, {q01, q0, q0, q0, q01}},   // NAS-IPv6-Address
    {96, {q01, q01, q0, q0, q01}},  // Framed-Interface-Id
    {97, {q0n, q0n, q0, q0, q0n}},  // Framed-IPv6-Prefix
    {98, {q0n, q0n, q0, q0, q0n}},  // Login-IPv6-Host
    {99, {q0, q0n, q0, q0, q0n}},   // Framed-IPv6-Route
    {100, {q0, q01, q0, q0, q01}},  // Framed-IPv6-Pool
});

// The same for Disconnect and CoA.
constexpr auto rfc5176 = std::to_array<Row>({
    // Request, ACK, NAK
    {1, {q01, q0, q0}},      // User-Name
    {4, {q01, q0, q0}},      // NAS-IP-Address
    {5, {q01, q0, q0}},      // NAS-Port
    {30, {q01, q0, q0}},     // Called-Station-Id
    {31, {q01, q0, q0}},     // Calling-Station-Id
    {32, {q01, q0, q0}},     // NAS-Identifier
    {33, {q0n, q0n, q0n}},   // Proxy-State
    {44, {q01, q0, q0}},     // Acct-Session-Id
    {55, {q01, q01, q01}},   // Event-Timestamp
    {61, {q01, q0, q0}},     // NAS-Port-Type
    {87, {q01, q0, q0}},     // NAS-Port-Id
    {95, {q01, q0, q0}},     // NAS-IPv6-Address
    {101, {q0, dash, dash}}, // Error-Cause
});

constexpr auto rfc5997 = std::to_array<Row>({
    {1, {q0}},    // User-Name
    {2, {q0}},    // User-Password
    {3, {q0}},    // CHAP-Password
    {4, {q01}},   // NAS-IP-Address
    {18, {q0}},   // Reply-Message
    {32, {q01}},  // NAS-Identifier
    {79, {q0}},   // EAP-Message
    {95, {q01}},  // NAS-IPv6-Address
});

constexpr auto tables = std::to_array<Table>({
    {"RFC 2865 section 5.44", access, rfc2865},
    {"RFC 2866 section 5.13", accounting, rfc2866},
    {"RFC 2868 section 4", accessAndAccounting, rfc2868},
    {"RFC 2869 section 5.19", accessAndAccounting, rfc2869},
    {"RFC 3162 section 3", accessAndAccounting, rfc3162},
    {"RFC 5176 section 3.6", dynamicAuthorization, rfc5176},
    {"RFC 5176 section 3.6", changeOfAuthorization, rfc5176},
    {"RFC 5997 section 5", statusServer, rfc5997},
});

// ---- Groups ----

// NAS-IP-Address, NAS-Identifier, NAS-IPv6-Address
constexpr auto nas = std::to_array<U8>({4, 32, 95});
// User-Password, CHAP-Password, State, Vendor-Specific, ARAP-Password, EAP-Message, Digest-Response
constexpr auto credentials = std::to_array<U8>({2, 3, 24, 26, 70, 79, 103});
// User-Password, CHAP-Password, ARAP-Password, EAP-Message
constexpr auto methods = std::to_array<U8>({2, 3, 70, 79});
// Reply-Message, EAP-Message
constexpr auto messages = std::to_array<U8>({18, 79});

constexpr const char* nasText = "NAS-IP-Address, NAS-IPv6-Address or NAS-Identifier";

constexpr auto required = std::to_array<GroupRule>({
    {RadiusCode::ACCESS_REQUEST, nas, nasText, "RFC 2865 section 4.1 and RFC 3162 section 2.1"},
    {RadiusCode::ACCESS_REQUEST, credentials,
     "User-Password, CHAP-Password, State or what stands for them", "RFC 2865 section 4.1"},
    {RadiusCode::ACCOUNTING_REQUEST, nas, nasText, "RFC 2866 section 4.1 and RFC 3162 section 2.1"},
});

constexpr auto exclusive = std::to_array<GroupRule>({
    {RadiusCode::ACCESS_REQUEST, methods, "", "RFC 2869 section 5.19"},
    {RadiusCode::ACCESS_ACCEPT, messages, "", "RFC 3579 section 2.6.5"},
    {RadiusCode::ACCESS_REJECT, messages, "", "RFC 3579 section 2.6.5"},
    {RadiusCode::ACCESS_CHALLENGE, messages, "", "RFC 3579 section 2.6.5"},
});

// clang-format on

/// The column of a code; nothing when the table has none.
std::optional<std::size_t> columnOf(const Table& table, U8 code) {
  const auto found = std::ranges::find(table.columns, code);
  return found == table.columns.end()
             ? std::nullopt
             : std::optional(static_cast<std::size_t>(found - table.columns.begin()));
}

}  // namespace

std::string attributeTables(U8 code) {
  std::string text;
  for (const Table& table : tables) {
    if (columnOf(table, code).has_value()) {
      text += text.empty() ? "" : ", ";
      text += table.rfc;
    }
  }
  return text;
}

std::vector<QuantityRule> quantityRules(U8 code) {
  std::vector<QuantityRule> rules;
  for (const Table& table : tables) {
    const std::optional<std::size_t> column = columnOf(table, code);
    for (const Row& row : table.rows) {
      if (column.has_value() && row.quantities[*column] != Quantity::unsaid) {
        rules.push_back({.type = row.type, .quantity = row.quantities[*column], .rfc = table.rfc});
      }
    }
  }
  return rules;
}

std::span<const GroupRule> requiredGroups() {
  return required;
}

std::span<const GroupRule> exclusiveGroups() {
  return exclusive;
}

}  // namespace RadiusPacketTool
