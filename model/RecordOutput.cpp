#include "model/RecordOutput.h"

#include "model/Schema.h"
#include "platform/JsonWriter.h"

namespace velmora {

namespace {

class IntoDictionary final : public RecordOutput {
public:
    explicit IntoDictionary(Dictionary& dictionary) : dictionary_(dictionary) {}

    void value(std::string_view key, const Value& value) override { add(key, value); }

    void record(std::string_view key, const VLSerializedModel* record) override {
        add(key, dictionaryFor(record));
    }

    void list(std::string_view key, const RecordList& records) override {
        Array array;
        array.reserve(records.size);
        for (std::size_t i = 0; i < records.size; ++i)
            array.push_back(dictionaryFor(records.at(records.list, i)));
        add(key, std::move(array));
    }

private:
    template <class T>
    void add(std::string_view key, T&& value) {
        dictionary_.emplace({key.data(), key.size()}, std::forward<T>(value));
    }

    Dictionary dictionaryFor(const VLSerializedModel* record) {
        return record != nullptr ? recordToDictionary(*record, record->keys()) : Dictionary();
    }

    Dictionary& dictionary_;
};

class IntoJson final : public RecordOutput {
public:
    explicit IntoJson(platform::JsonWriter& writer) : writer_(writer) {}

    void value(std::string_view key, const Value& value) override {
        writer_.key(key);
        writer_.value(value);
    }

    void record(std::string_view key, const VLSerializedModel* record) override {
        writer_.key(key);
        write(record);
    }

    void list(std::string_view key, const RecordList& records) override {
        writer_.key(key);
        writer_.beginArray();
        for (std::size_t i = 0; i < records.size; ++i) write(records.at(records.list, i));
        writer_.endArray();
    }

    void write(const VLSerializedModel* record) {
        writer_.beginDictionary();
        if (record != nullptr) record->schema().write(*record, *this);
        writer_.endDictionary();
    }

private:
    platform::JsonWriter& writer_;
};

}  // namespace

Dictionary recordToDictionary(const VLSerializedModel& record, const Keys& keys) {
    Dictionary dictionary;
    IntoDictionary output(dictionary);
    record.schema().write(record, keys, output);
    return dictionary;
}

std::optional<std::string> recordToJson(const VLSerializedModel& record) {
    platform::JsonWriter writer;
    IntoJson(writer).write(&record);
    return writer.take();
}

}  // namespace velmora
