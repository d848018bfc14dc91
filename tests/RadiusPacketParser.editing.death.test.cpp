#include "RadiusPacketParser/RadiusPacketParser.h"

#include <csignal>
#include <string>
#include <string_view>

#include <fmt/format.h>
#include <gmock/gmock-matchers.h>
#include <gtest/gtest.h>

#include "tests/support/LegacyPacket.h"
#include "tests/support/LegacyTexts.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"

namespace {

using namespace RadiusPacketParser;
using testing::KilledBySignal;
using testing::MatchesRegex;
using TestSupport::bytesOf;
using TestSupport::LegacyPtr;
using TestSupport::PacketMaker;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::uncheckedPacket;
using TestSupport::verdaBytes;
using Verda::U8;
namespace LegacyTexts = TestSupport::LegacyTexts;

constexpr U8 userName = 1;
constexpr U8 userPassword = 2;
constexpr U8 eapMessage = 79;
constexpr U8 of64Bits = 200;
constexpr Verda::U32 vendor = 9;
constexpr U8 vendorString = 1;
constexpr U8 vendorDate = 2;

TestSupport::DictPtr makeDictionary() {
  TestSupport::DictionaryMaker maker;
  maker.add(userName, RadiusAttributeType::string)
      .add(userPassword, RadiusAttributeType::string, {.encrypt = 1})
      .add(eapMessage, RadiusAttributeType::octets, {.concat = true})
      .add(of64Bits, RadiusAttributeType::integer64);
  maker.addVendor(vendor, vendorString, RadiusAttributeType::string)
      .addVendor(vendor, vendorDate, RadiusAttributeType::date);
  return maker.make();
}

const TestSupport::DictPtr dictionary = makeDictionary();

/// A text as a regular expression that matches nothing else.
std::string literally(std::string_view text) {
  std::string expression;
  for (const char c : text) {
    if (std::string_view(R"(\.[]{}()*+?^$|)").find(c) != std::string_view::npos) {
      expression += '\\';
    }
    expression += c;
  }
  return expression;
}

std::string textOf(std::size_t length) {
  return std::string(length, 't');
}

/// What dies, the lines that it leaves, and the assertion's own.
struct Misuse {
  const char* name;
  void (*operation)();
  std::string trace;
  const char* file;
  const char* function;
  const char* assertion;
};

LegacyPtr legacyPacket(const PacketMaker& maker) {
  return uncheckedPacket(maker.make(), dictionary);
}

void add(U8 code, const std::string& text) {
  const LegacyPtr parser = legacyPacket(PacketMaker(1));
  parser->attributesToAddIs(code, text);
  parser->addAttribute();
}

void addVsa(Verda::U32 vendorId, U8 code, const std::string& value) {
  const LegacyPtr parser = legacyPacket(PacketMaker(1));
  parser->vsaToAddIs(0, VsaValueType(vendorId, code, value));
  parser->addAttribute();
}

/// A packet longer than any may be.
PacketMaker tooLong() {
  PacketMaker maker(1);
  for (int count = 0; count < 17; ++count) {
    maker.add(userName, bytesOf(textOf(253)));
  }
  return maker;
}

std::string traced(std::string_view function, std::string_view text) {
  return fmt::format("RadiusPacketParser::RadiusPacketParser 0 {}: {}\n", function, text);
}

constexpr const char* editing = "RadiusPacketParser.editing.cpp";
constexpr const char* authenticators = "RadiusPacketParser.authenticators.cpp";
constexpr const char* checks = "RadiusPacketParser.cpp";

void expectDeath(const Misuse& misuse) {
  SCOPED_TRACE(misuse.name);
  EXPECT_EXIT(
      misuse.operation(), KilledBySignal(SIGABRT),
      MatchesRegex(fmt::format("{}RadiusPacketParser/{}:[0-9]+: {}: Assertion \"{}\" failed\\.\n",
                               literally(misuse.trace), literally(misuse.file), misuse.function,
                               literally(misuse.assertion))));
}

TEST(LegacyEditingDeathTest, EndsTheProcessSayingWhatWasAsserted) {
  const Misuse misuses[] = {
      {"a text of 254 bytes", [] { add(userName, textOf(254)); },
       traced("addStrOctetTypes",
              "Attribute addition failed for attrId: 1, attrValue: " + textOf(254)),
       editing, "addStrOctetTypes", LegacyTexts::textTooLong},
      {"an unsupported type", [] { add(of64Bits, "1"); },
       traced("RadiusPacketParserBase::addAttribute", "Type Not Supported200"), editing,
       "addAttribute", "false"},
      {"concat pieces beyond 4096 bytes", [] { add(eapMessage, textOf(4096)); }, "", editing,
       "addFragments", LegacyTexts::piecesTooLong},
      {"a vendor that the dictionary lacks", [] { addVsa(77, 1, "v"); },
       traced("RadiusPacketParserBase::addAttribute",
              "Type Not Supported for vendorId:77, attrId:1"),
       editing, "addAttribute", "false"},
      {"a vendor's date", [] { addVsa(vendor, vendorDate, "1"); },
       traced("RadiusPacketParserBase::addAttribute",
              "Type Not Supported for vendorId:9, attrId:2"),
       editing, "addAttribute", "false"},
      {"a vendor's value of 248 bytes", [] { addVsa(vendor, vendorString, textOf(248)); }, "",
       editing, "addVendorAttribute", LegacyTexts::vsaLengthsDiffer},
      {"a vendor's value of 250 bytes", [] { addVsa(vendor, vendorString, textOf(250)); },
       traced("RadiusPacketParserBase::addAttribute",
              "Addition of vsa failed for code: 1, vendorId: 9, attrValue: " + textOf(250)),
       editing, "addVendorAttribute", LegacyTexts::vsaValueTooLong},
      {"adding to a packet that is too long", [] { legacyPacket(tooLong())->addAttribute(); }, "",
       editing, "assertNotTooLong", LegacyTexts::packetTooLong},
      {"removing from a packet that is too long",
       [] { legacyPacket(tooLong())->removeAttribute(); }, "", editing, "assertNotTooLong",
       LegacyTexts::packetTooLong},
      {"setting in a packet that is too long",
       [] { legacyPacket(tooLong())->setValuesOfAttributesFromAttributesToSet(); }, "", editing,
       "setValuesOfAttributesFromAttributesToSet", LegacyTexts::setPacketTooLong},
      {"setting an unsupported type",
       [] {
         const LegacyPtr parser = legacyPacket(PacketMaker(1).add(of64Bits, {}));
         parser->attributesToSetIs(of64Bits, "1");
         parser->setValuesOfAttributesFromAttributesToSet();
       },
       traced("RadiusPacketParserBase::setValuesOfAttributesFromAttributesToSet",
              "Type Not Supported200"),
       editing, "setValuesOfAttributesFromAttributesToSet", "false"},
  };
  for (const Misuse& misuse : misuses) {
    expectDeath(misuse);
  }
}

TEST(LegacyEditingDeathTest, EndsTheProcessWithTraceOffToo) {
  expectDeath({"trace off",
               [] {
                 Verda::traceThresholdIs(Verda::traceOff);
                 add(userName, textOf(254));
               },
               "", editing, "addStrOctetTypes", LegacyTexts::textTooLong});
}

TEST(LegacyEditingDeathTest, BytesOfATextDoNotDriveTheTerminal) {
  expectDeath({"an escape sequence", [] { addVsa(vendor, vendorString, "\x1b[31m" + textOf(250)); },
               traced("RadiusPacketParserBase::addAttribute",
                      "Addition of vsa failed for code: 1, vendorId: 9, attrValue: \\x1b[31m" +
                          textOf(250)),
               editing, "addVendorAttribute", LegacyTexts::vsaValueTooLong});
}

TEST(LegacySigningDeathTest, EndsTheProcessSayingWhatWasAsserted) {
  const Misuse misuses[] = {
      {"hiding in a request with a Request Authenticator",
       [] { legacyPacket(PacketMaker(1))->encryptPacket(testSecret, verdaBytes(testReqAuth)); }, "",
       authenticators, "assertRequest", LegacyTexts::reqAuthOfRequest},
      {"revealing in a response without one",
       [] { legacyPacket(PacketMaker(2))->decryptPacket(testSecret, {}); }, "", authenticators,
       "assertResponse", LegacyTexts::noReqAuthOfResponse},
      {"hiding under one that is too short",
       [] { legacyPacket(PacketMaker(2).add(userPassword, {1}))->encryptPacket(testSecret, {1}); },
       "", checks, "wholeAuthenticator", LegacyTexts::authenticatorTooShort},
      {"checking the authenticator with one that is too short",
       [] { legacyPacket(PacketMaker(2))->validateAuthenticator(testSecret, {1}); }, "", checks,
       "wholeAuthenticator", LegacyTexts::authenticatorTooShort},
      {"setting the authenticator of a response without one",
       [] { legacyPacket(PacketMaker(2))->setResponseAuthenticator(testSecret, {}); }, "",
       authenticators, "assertResponse", LegacyTexts::noReqAuthOfResponse},
      {"setting the Message-Authenticator of a request with one",
       [] {
         legacyPacket(PacketMaker(12).addMessageAuthenticator())
             ->setMessageAuthenticator(testSecret, verdaBytes(testReqAuth));
       },
       "", authenticators, "assertRequest", LegacyTexts::reqAuthOfRequest},
      {"checking the Message-Authenticator of a response without one",
       [] {
         const LegacyPtr parser = legacyPacket(PacketMaker(2).addMessageAuthenticator());
         parser->msgAuthPresentIs(true);
         parser->validateMessageAuthenticator(testSecret, {});
       },
       "", authenticators, "assertResponse", LegacyTexts::noReqAuthOfResponse},
  };
  for (const Misuse& misuse : misuses) {
    expectDeath(misuse);
  }
}

}  // namespace
