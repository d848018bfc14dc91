#include "tool/anatomy/FieldList.h"

#include <algorithm>

namespace RadiusPacketTool {

std::size_t FieldList::add(std::size_t parent, std::size_t offset, std::size_t length,
                           const std::string& name, const std::string& meaning) {
  const std::size_t from = std::min(offset, bytes_.size());
  const auto bytes = bytes_.subspan(from, std::min(length, bytes_.size() - from));
  Field field{.offset = offset,
              .length = length,
              .depth = 0,
              .name = name,
              .path = name,
              .bytes = {bytes.begin(), bytes.end()},
              .meaning = meaning,
              .isRevealed = false,
              .fault = std::nullopt};
  if (parent != packet) {
    field.depth = anatomy_.fields[parent].depth + 1;
    field.path = anatomy_.fields[parent].path + " / " + name;
  }
  anatomy_.fields.push_back(std::move(field));
  return anatomy_.fields.size() - 1;
}

void FieldList::refuse(std::size_t index, const FieldFault& fault) {
  if (!anatomy_.fields[index].fault.has_value()) {
    anatomy_.fields[index].fault = fault;
    anatomy_.faulty.push_back(index);
  }
}

}  // namespace RadiusPacketTool
