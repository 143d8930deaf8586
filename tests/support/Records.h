#pragma once

#include "model/RecordOutput.h"
#include "model/VLSerializedModel.h"
#include "platform/Json.h"

#include <initializer_list>
#include <memory>
#include <string_view>

#include <gtest/gtest.h>

namespace velmora::test {

/// What a JSON text says; throws when it says nothing.
inline Value valueOf(std::string_view json) { return platform::parseJson(json).value(); }

/// A record read from JSON text.
template <class Record>
std::shared_ptr<Record> read(std::string_view json) {
    auto input = valueOf(json);
    return recordFrom<Record>(input.if_object());
}

/// What a record writes, as a dictionary and as text alike.
template <class Record>
Value written(const Record& record) {
    const Value dictionary(dictionaryOf(asRecord(record)));
    EXPECT_EQ(valueOf(recordToJson(asRecord(record)).value()), dictionary);
    return dictionary;
}

struct Conversion {
    const char* input;
    const char* output;
};

/// A record that reads the input writes the output.
template <class Record>
void expectConversions(std::initializer_list<Conversion> conversions) {
    for (const auto& [input, output] : conversions) {
        EXPECT_EQ(written(*read<Record>(input)), valueOf(output)) << input;
    }
}

}  // namespace velmora::test
