#pragma once

#include "model/VLSerializedModel.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

/// A list of records of any class, seen as records.
struct RecordList {
    const void* list;
    std::size_t size;
    const VLSerializedModel* (*at)(const void* list, std::size_t index);
};

/// Where the entries of a record go.
class RecordOutput {
public:
    RecordOutput() = default;
    virtual ~RecordOutput() = default;
    RecordOutput(const RecordOutput&) = delete;
    RecordOutput& operator=(const RecordOutput&) = delete;

    virtual void value(std::string_view key, const Value& value) = 0;
    /// Null stands for a record without entries.
    virtual void record(std::string_view key, const VLSerializedModel* record) = 0;
    virtual void list(std::string_view key, const RecordList& records) = 0;
};

/// The dictionary of the keys, as a tree of values.
[[nodiscard]] Dictionary recordToDictionary(const VLSerializedModel& record, const Keys& keys);

/// The JSON text of the dictionary of the record's own keys. Absent when it is nested too deep.
[[nodiscard]] std::optional<std::string> recordToJson(const VLSerializedModel& record);

}  // namespace velmora
