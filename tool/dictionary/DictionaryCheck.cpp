#include "tool/dictionary/DictionaryCheck.h"

#include <nlohmann/json.hpp>

#include "Verda/Escape.h"

#include "tool/dictionary/DictionaryLoading.h"
#include "tool/dictionary/DictionaryReader.h"
#include "tool/dictionary/DictionarySchema.h"
#include "tool/process/FaultTrace.h"
#include "tool/text/JsonLine.h"

namespace RadiusPacketTool {

using Json = nlohmann::ordered_json;

namespace {

/// A number that counts from 1, or null.
Json positionOf(std::size_t number) {
  return number == 0 ? Json() : Json(number);
}

Json jsonObject(const DictionaryProblem& problem) {
  return {{"file", Verda::escaped(problem.file)},
          {"line", positionOf(problem.line)},
          {"column", positionOf(problem.column)},
          {"severity", severityName(problem.severity)},
          {"text", Verda::escaped(problem.text)},
          {"suggestion",
           problem.suggestion.empty() ? Json() : Json(Verda::escaped(problem.suggestion))}};
}

Json jsonArray(const std::vector<DictionaryProblem>& problems) {
  Json array = Json::array();
  for (const DictionaryProblem& problem : problems) {
    array.push_back(jsonObject(problem));
  }
  return array;
}

Json jsonArray(const std::vector<std::string>& names) {
  Json array = Json::array();
  for (const std::string& name : names) {
    array.push_back(Verda::escaped(name));
  }
  return array;
}

Json jsonArray(const std::vector<VendorSummary>& vendors) {
  Json array = Json::array();
  for (const VendorSummary& vendor : vendors) {
    array.push_back({{"vendorId", vendor.vendorId},
                     {"name", Verda::escaped(vendor.name)},
                     {"attributes", vendor.attributes}});
  }
  return array;
}

}  // namespace

DictionaryCheck checkDictionary(const std::string& path) {
  DictionaryCheck check{.path = path, .problems = readDictionary(path).problems, .summary = {}};
  if (check.problems.count(Severity::error) == 0) {
    const FaultTrace saidAlready;
    check.summary = summaryOf(loadDictionary(path));
  }
  return check;
}

std::string jsonOf(const DictionaryCheck& check) {
  const bool loads = check.summary.has_value();
  Json json;
  json["schema"] = dictionarySchema;
  json["dictionary"] = Verda::escaped(check.path);
  json["loads"] = loads;
  json["includedFiles"] = loads ? jsonArray(check.summary->includedFiles) : Json();
  json["standardAttributes"] = loads ? Json(check.summary->standardAttributes) : Json();
  json["vendors"] = loads ? jsonArray(check.summary->vendors) : Json();
  json["errors"] = check.problems.count(Severity::error);
  json["warnings"] = check.problems.count(Severity::warning);
  json["problems"] = jsonArray(check.problems.all());
  return jsonLine(json);
}

}  // namespace RadiusPacketTool
