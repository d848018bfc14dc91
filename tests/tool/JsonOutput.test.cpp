#include "tool/output/JsonOutput.h"

#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/tool/SampleReport.h"

namespace RadiusPacketTool {
namespace {

using RadiusPktParserBase::ErrorMsg;
using RadiusPktParserBase::vendorAttribute;
using RadiusPktParserTest::StatusServerErrorMsg;

TEST(JsonOutput, WritesAGoodPacketOnOneLine) {
  PacketReport report = sampleReport();
  report.messageAuthenticatorPresent = true;
  EXPECT_EQ(
      jsonOf(report),
      R"({"schema":1,"kind":"packet","source":"file.hex","index":2,"time":null,"from":null,"to":null,"code":2,"codeName":"ACCESS_ACCEPT","id":7,)"
      R"("length":20,"authenticator":"000102030405060708090a0b0c0d0e0f","pairedWith":null,"retransmissionOf":null,"error":"success",)"
      R"("reason":null,"messageAuthenticator":true,"attributes":[]})"
      "\n");
}

TEST(JsonOutput, SaysWhichRequestAResponseWasPairedWith) {
  PacketReport report = sampleReport();
  report.pairedWith = {.source = "\xff", .index = 70000};
  EXPECT_EQ(nlohmann::ordered_json::parse(jsonOf(report)).at("pairedWith").dump(),
            R"({"source":"\\xff","index":70000})");
}

TEST(JsonOutput, SaysWhatCarriedAPacketAndWhatItRepeats) {
  PacketReport report = sampleReport();
  report.datagram = sampleDatagram();
  report.retransmissionOf = {.source = "x.pcap", .index = 3};
  const auto json = nlohmann::ordered_json::parse(jsonOf(report));
  EXPECT_EQ(json.at("time"), "2026-11-21T10:00:00.123456Z");
  EXPECT_EQ(json.at("from"), "192.0.2.1:40000");
  EXPECT_EQ(json.at("to"), "[2001:db8::1]:1812");
  EXPECT_EQ(json.at("retransmissionOf").dump(), R"({"source":"x.pcap","index":3})");
}

TEST(JsonOutput, WritesTheStatusServerVerdictWhereItIsAskedFor) {
  PacketReport report = sampleReport();
  report.statusServer = StatusServerErrorMsg::msgAuthNotPresent;
  EXPECT_EQ(
      jsonOf(report, {.statusServer = true}),
      R"({"schema":1,"kind":"packet","source":"file.hex","index":2,"time":null,"from":null,"to":null,"code":2,"codeName":"ACCESS_ACCEPT","id":7,)"
      R"("length":20,"authenticator":"000102030405060708090a0b0c0d0e0f","pairedWith":null,"retransmissionOf":null,"error":"success",)"
      R"("reason":null,"messageAuthenticator":false,"statusServer":"msgAuthNotPresent",)"
      R"("attributes":[]})"
      "\n");
  const auto notAsked = nlohmann::json::parse(jsonOf(report, {.statusServer = false}));
  EXPECT_FALSE(notAsked.contains("statusServer"));
}

TEST(JsonOutput, WritesNullForAStatusServerVerdictThatIsNotThere) {
  const auto json = nlohmann::json::parse(jsonOf(sampleReport(), {.statusServer = true}));
  EXPECT_TRUE(json.at("statusServer").is_null());
}

TEST(JsonOutput, WritesNullForWhatAShortPacketLacks) {
  PacketReport report;
  report.place.source = "-";
  report.place.index = 1;
  report.error = ErrorMsg::invalidPktLength;
  report.reason = "Packet has invalid length: 0";
  EXPECT_EQ(
      jsonOf(report),
      R"({"schema":1,"kind":"packet","source":"-","index":1,"time":null,"from":null,"to":null,"code":null,"codeName":null,"id":null,"length":null,)"
      R"("authenticator":null,"pairedWith":null,"retransmissionOf":null,"error":"invalidPktLength",)"
      R"("reason":"Packet has invalid length: 0","messageAuthenticator":false,)"
      R"("attributes":[]})"
      "\n");
}

TEST(JsonOutput, WritesNullForTheErrorOfAPacketThatWasNotDecoded) {
  PacketReport report = sampleReport();
  report.error.reset();
  report.header.code = 14;
  const auto json = nlohmann::json::parse(jsonOf(report));
  EXPECT_TRUE(json.at("error").is_null());
  EXPECT_EQ(json.at("codeName"), "RadiusCode(14)");
}

TEST(JsonOutput, WritesAttributesInOrder) {
  PacketReport report = sampleReport();
  report.attributes = {sampleAttribute("Tunnel-Type", ShownNumber{16777215, ""}, 0),
                       sampleAttribute("Attr-26.9.1", ShownText{R"(a\"\\\x00)"})};
  report.attributes[0].type = RadiusPacketParser::RadiusAttributeType::integer;
  report.attributes[0].wire = {0, 0xff, 0xff, 0xff};
  report.attributes[0].offset = 20;
  report.attributes[0].length = 6;
  report.attributes[1].key = vendorAttribute(4294967295U, 255);
  report.attributes[1].offset = 26;
  report.attributes[1].length = 255;
  const auto json = nlohmann::ordered_json::parse(jsonOf(report));
  EXPECT_EQ(
      json.at("attributes").dump(),
      R"([{"offset":20,"length":6,"attrId":250,"vendorId":0,"vendorAttrId":0,"name":"Tunnel-Type",)"
      R"("type":"integer","tag":0,"value":16777215,"redacted":false,"hex":"00ffffff"},)"
      R"({"offset":26,"length":255,"attrId":26,"vendorId":4294967295,"vendorAttrId":255,"name":"Attr-26.9.1",)"
      R"("type":"unknown","tag":null,"value":"a\\\"\\\\\\x00","redacted":false,"hex":""}])");
}

TEST(JsonOutput, WritesBytesAsBareDigits) {
  PacketReport report = sampleReport();
  report.attributes = {sampleAttribute("State", ShownBytes{{0x00, 0xab, 0xff}}),
                       sampleAttribute("State", ShownBytes{}),
                       sampleAttribute("Tunnel-Password", ShownPlain{"0xff"}, 1)};
  const auto attributes = nlohmann::json::parse(jsonOf(report)).at("attributes");
  EXPECT_EQ(attributes.at(0).at("value"), "00abff");
  EXPECT_EQ(attributes.at(1).at("value"), "");
  EXPECT_EQ(attributes.at(2).at("value"), "0xff");
}

TEST(JsonOutput, KeepsRevealedValuesToItselfWhereThatIsAskedFor) {
  PacketReport report = sampleReport();
  report.attributes = {sampleAttribute("User-Password", ShownText{"secret"}),
                       sampleAttribute("User-Name", ShownText{"nemo"})};
  report.attributes[0].isRevealed = true;
  const auto shown = nlohmann::json::parse(jsonOf(report)).at("attributes");
  EXPECT_EQ(shown.at(0).at("value"), "secret");
  EXPECT_EQ(shown.at(0).at("redacted"), false);
  const auto redacted = nlohmann::json::parse(jsonOf(report, {.redact = true})).at("attributes");
  EXPECT_EQ(redacted.at(0).at("value"), nullptr);
  EXPECT_EQ(redacted.at(0).at("redacted"), true);
  EXPECT_EQ(redacted.at(1).at("value"), "nemo");
  EXPECT_EQ(redacted.at(1).at("redacted"), false);
}

TEST(JsonOutput, EscapesTheLineEndsOfUnicode) {
  constexpr const char* separators = "a\xe2\x80\xa8\xe2\x80\xa8\xe2\x80\xa9\xe2\x80\xaf";
  PacketReport report = sampleReport();
  report.reason = separators;
  report.attributes = {sampleAttribute("User-Name", ShownText{separators})};
  const std::string json = jsonOf(report);
  EXPECT_NE(json.find("\"reason\":\"a\\u2028\\u2028\\u2029\xe2\x80\xaf\""), std::string::npos)
      << json;
  EXPECT_EQ(json.find("\xe2\x80\xa8"), std::string::npos) << json;
  EXPECT_EQ(json.find("\xe2\x80\xa9"), std::string::npos) << json;
  EXPECT_EQ(nlohmann::json::parse(json).at("attributes").at(0).at("value"), separators);
}

TEST(JsonOutput, IsUtf8WhateverNamesHold) {
  PacketReport report = sampleReport();
  report.place.source = "\xff\x1b";
  report.reason = "\xc3";
  report.attributes = {sampleAttribute("\xe2\x82", ShownPlain{""})};
  const auto json = nlohmann::json::parse(jsonOf(report));
  EXPECT_EQ(json.at("source"), R"(\xff\x1b)");
  EXPECT_EQ(json.at("reason"), R"(\xc3)");
  EXPECT_EQ(json.at("attributes").at(0).at("name"), R"(\xe2\x82)");
}

}  // namespace
}  // namespace RadiusPacketTool
