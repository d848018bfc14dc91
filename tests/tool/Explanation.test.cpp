#include "tool/anatomy/Explanation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tool/SampleReport.h"

namespace RadiusPacketTool {
namespace {

using RadiusPktParserBase::ErrorMsg;

/// A packet with a wrong authenticator.
Explanation sampleExplanation() {
  Explanation explanation;
  explanation.report = sampleReport();
  explanation.report.error = ErrorMsg::invalidPktAuth;
  explanation.packet = TestSupport::countingBytes(20);
  Field field{.offset = 4,
              .length = 16,
              .depth = 0,
              .name = "Authenticator",
              .path = "Authenticator",
              .bytes = TestSupport::countingBytes(16, 4),
              .meaning = "",
              .isRevealed = false,
              .fault = std::nullopt};
  field.fault = {.error = ErrorMsg::invalidPktAuth,
                 .found = "one",
                 .expected = "another",
                 .section = "RFC 2865 section 3"};
  explanation.culprit = field;
  return explanation;
}

TEST(Explanation, SaysWhatWasFoundOutOfACheck) {
  Explanation explanation = sampleExplanation();
  explanation.report.pairedWith = PacketPlace{.source = "request.bin", .index = 1};
  explanation.diagnosis = {.finding = "the secret ends with a newline",
                           .ruledOut = {"a secret in hex", "a \x1b[2J"}};
  EXPECT_EQ(textOf(explanation),
            "packet 2 of file.hex is refused: invalidPktAuth\n"
            "\n"
            "  0000  00 01 02 03 04 05 06 07  08 09 0a 0b 0c 0d 0e 0f  ................\n"
            "                    ^^ ^^ ^^ ^^  ^^ ^^ ^^ ^^ ^^ ^^ ^^ ^^\n"
            "  0010  10 11 12 13                                       ....\n"
            "        ^^ ^^ ^^ ^^\n"
            "\n"
            "where      offset 4 (0x04), 16 bytes: Authenticator\n"
            "found      one\n"
            "expected   another\n"
            "section    RFC 2865 section 3\n"
            "answers    packet 1 of request.bin\n"
            "finding    the secret ends with a newline\n");
  EXPECT_EQ(jsonOf(explanation),
            R"({"schema":1,"kind":"explanation","source":"file.hex","index":2,)"
            R"("time":null,"from":null,"to":null,"code":2,)"
            R"("codeName":"ACCESS_ACCEPT","id":7,"length":20,)"
            R"("authenticator":"000102030405060708090a0b0c0d0e0f",)"
            R"("pairedWith":{"source":"request.bin","index":1},"error":"invalidPktAuth",)"
            R"("reason":null,"fault":{"offset":4,"length":16,"path":"Authenticator",)"
            R"("hex":"0405060708090a0b0c0d0e0f10111213","found":"one","expected":"another",)"
            R"("section":"RFC 2865 section 3"},"finding":"the secret ends with a newline",)"
            R"("ruledOut":["a secret in hex","a \\x1b[2J"],"others":[]})"
            "\n");
}

TEST(Explanation, SaysWhatWasRuledOutWhenNothingFits) {
  Explanation explanation = sampleExplanation();
  explanation.diagnosis = {.finding = std::nullopt, .ruledOut = {"a secret in hex", "a \x1b[2J"}};
  explanation.report.datagram =
      Datagram{.time = std::chrono::microseconds(1),
               .from = {.address = Zonet::IpGenAddr("192.0.2.1"), .port = 1812},
               .to = {.address = Zonet::IpGenAddr("2001:db8::1"), .port = 40000}};
  EXPECT_THAT(textOf(explanation),
              testing::EndsWith(
                  "section    RFC 2865 section 3\n"
                  "went       192.0.2.1:1812 > [2001:db8::1]:40000, 1970-01-01T00:00:00.000001Z\n"
                  "finding    nothing that was tried fits: most likely the secret is another\n"
                  "ruled out  a secret in hex\n"
                  "           a \\x1b[2J\n"));
}

TEST(Explanation, SaysWhatElseIsWrong) {
  Explanation explanation = sampleExplanation();
  explanation.culprit.reset();
  explanation.report.reason = "why\nnot";
  explanation.others.push_back(*sampleExplanation().culprit);
  EXPECT_EQ(textOf(explanation),
            "packet 2 of file.hex is refused: invalidPktAuth\n"
            "reason     why\\nnot\n"
            "also       invalidPktAuth at offset 4 (0x04): Authenticator\n");
}

TEST(Explanation, OfAnAcceptedPacketIsOneLine) {
  Explanation explanation;
  explanation.report = sampleReport();
  EXPECT_EQ(textOf(explanation), "packet 2 of file.hex is accepted\n");
}

TEST(Explanation, SaysThatAPacketWithoutASecretCannotBeChecked) {
  Explanation explanation;
  explanation.report = sampleReport();
  explanation.report.error.reset();
  explanation.report.reason = "no shared secret is known for its client";
  EXPECT_EQ(textOf(explanation),
            "packet 2 of file.hex cannot be checked\n"
            "reason     no shared secret is known for its client\n");
}

}  // namespace
}  // namespace RadiusPacketTool
