#pragma once

#include "model/AtomicProperty.h"
#include "model/RecordOutput.h"
#include "model/VLSerializedModel.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

namespace velmora {

/// One line of a record's table: a property, its key, and how the two convert.
struct Field {
    /// In what way a property differs from a plain one.
    enum class Kind : unsigned char {
        plain,       ///< a value under the property's own name
        mapped,      ///< a value under a key of another name
        structured,  ///< a nested record, or a list of them
    };

    std::string_view key;
    std::string_view name;
    Kind kind = Kind::plain;
    bool (*isPresent)(const VLSerializedModel& model) = nullptr;
    /// Adds the entry, where there is one to add.
    void (*write)(const VLSerializedModel& model, std::string_view key, RecordOutput& output) = nullptr;
    /// Takes the entry of `key`, and its value out of it; null when the dictionary has none. A plain property
    /// has no such function.
    void (*read)(VLSerializedModel& model, Value* input) = nullptr;
    /// Takes an entry that has the property's own name, and its value out of it. A structured property has no
    /// such function.
    void (*assign)(VLSerializedModel& model, Value& input) = nullptr;
};

/// A record's table.
///
/// Writing takes the mapped and structured properties first and then, of the keys asked for, the plain ones.
/// Reading does the same, with the entries of the dictionary in place of the keys, and moves the values.
class Schema {
public:
    /// Which properties a record names when it is asked for its keys.
    enum class Listed : unsigned char { present, all };

    constexpr Schema() = default;

    explicit constexpr Schema(std::span<const Field> fields, Listed listed = Listed::present)
        : fields_(fields), listed_(listed) {}

    [[nodiscard]] Keys keys(const VLSerializedModel& model) const;
    [[nodiscard]] std::span<const Field> fields() const noexcept { return fields_; }
    void write(const VLSerializedModel& model, const Keys& keys, RecordOutput& output) const;
    /// The same for the record's own keys.
    void write(const VLSerializedModel& model, RecordOutput& output) const;
    void read(VLSerializedModel& model, Dictionary& input) const;

private:
    [[nodiscard]] bool lists(const Field& field, const VLSerializedModel& model) const;
    [[nodiscard]] const Field* find(std::string_view name, std::size_t& expected) const noexcept;

    std::span<const Field> fields_;
    Listed listed_ = Listed::present;
};

namespace schema_detail {

template <class Class, class Type>
Class classOf(Type Class::*);
template <class Class, class Type>
Type typeOf(Type Class::*);

template <auto member>
decltype(auto) in(const VLSerializedModel& model) {
    return (static_cast<const decltype(classOf(member))&>(model).*member);
}

template <auto member>
decltype(auto) in(VLSerializedModel& model) {
    return (static_cast<decltype(classOf(member))&>(model).*member);
}

template <class T>
const T& get(const T& property) {
    return property;
}

template <class T>
T get(const AtomicProperty<T>& property) {
    return property.get();
}

template <class T>
void set(T& property, std::type_identity_t<T> value) {
    property = std::move(value);
}

template <class T>
void set(AtomicProperty<T>& property, std::type_identity_t<T> value) {
    property.set(std::move(value));
}

template <class T>
struct ElementOf;

template <class Model>
struct ElementOf<ModelList<Model>> {
    using Type = Model;
};

template <class Model>
struct ElementOf<AtomicProperty<ModelList<Model>>> : ElementOf<ModelList<Model>> {};

inline boost::json::string_view json(std::string_view text) { return {text.data(), text.size()}; }

template <auto member>
bool isPresent(const VLSerializedModel& model) {
    return static_cast<bool>(get(in<member>(model)));
}

template <auto member>
void assignValue(VLSerializedModel& model, Value& input) {
    if (input.is_null()) return set(in<member>(model), std::nullopt);
    set(in<member>(model), Property(std::move(input)));
}

template <auto member>
void readValue(VLSerializedModel& model, Value* input) {
    if (input == nullptr) return set(in<member>(model), std::nullopt);
    // The null marker is kept as it is here.
    set(in<member>(model), Property(std::move(*input)));
}

template <auto member>
void readInteger(VLSerializedModel& model, Value* input) {
    set(in<member>(model), Value(input != nullptr ? platform::asInteger(*input) : 0));
}

template <auto member>
void writeIfPresent(const VLSerializedModel& model, std::string_view key, RecordOutput& output) {
    if (const Property& property = get(in<member>(model))) output.value(key, *property);
}

template <auto member>
void writeOrNull(const VLSerializedModel& model, std::string_view key, RecordOutput& output) {
    const Property& property = get(in<member>(model));
    if (!property) return output.value(key, nullptr);
    output.value(key, *property);
}

template <auto member>
void writeRecord(const VLSerializedModel& model, std::string_view key, RecordOutput& output) {
    if (const auto& record = get(in<member>(model))) output.record(key, &asRecord(*record));
}

template <auto member>
void writeRecordOrEmpty(const VLSerializedModel& model, std::string_view key, RecordOutput& output) {
    const auto& record = get(in<member>(model));
    output.record(key, record ? &asRecord(*record) : nullptr);
}

template <auto member>
void readRecord(VLSerializedModel& model, Value* input) {
    if (!VLSerializedModel::isValidValue(input)) return;
    using Pointer = std::decay_t<decltype(get(in<member>(model)))>;
    set(in<member>(model), recordFrom<typename Pointer::element_type>(input->if_object()));
}

template <class Model>
const VLSerializedModel* elementOf(const void* list, std::size_t index) {
    const auto& element = (*static_cast<const typename ModelList<Model>::element_type*>(list))[index];
    return element ? &asRecord(*element) : nullptr;
}

template <auto member>
void writeList(const VLSerializedModel& model, std::string_view key, RecordOutput& output) {
    using Model = typename ElementOf<decltype(typeOf(member))>::Type;
    const auto& list = get(in<member>(model));
    output.list(key, {list.get(), list ? list->size() : 0, elementOf<Model>});
}

template <auto member>
void writeListOrNull(const VLSerializedModel& model, std::string_view key, RecordOutput& output) {
    if (!isPresent<member>(model)) return output.value(key, nullptr);
    writeList<member>(model, key, output);
}

template <auto member>
void readList(VLSerializedModel& model, Value* input) {
    using Model = typename ElementOf<decltype(typeOf(member))>::Type;
    auto list = makeList<Model>();
    if (auto* const array = input != nullptr ? input->if_array() : nullptr) {
        list->reserve(array->size());
        for (auto& element : *array) list->push_back(recordFrom<Model>(element.if_object()));
    }
    set(in<member>(model), std::move(list));
}

template <auto member>
void readEmptyList(VLSerializedModel& model, Value*) {
    set(in<member>(model), makeList<typename ElementOf<decltype(typeOf(member))>::Type>());
}

template <auto member>
void assignList(VLSerializedModel& model, Value& input) {
    if (input.is_null()) return set(in<member>(model), nullptr);
    readList<member>(model, &input);
}

/// What is not a value: a record or a list of records, under the property's own name.
template <auto member>
constexpr Field structured(std::string_view key, decltype(Field::write) write, decltype(Field::read) read) {
    return {.key = key,
            .name = key,
            .kind = Field::Kind::structured,
            .isPresent = isPresent<member>,
            .write = write,
            .read = read};
}

}  // namespace schema_detail

/// A value under the property's own name, kept as it comes.
template <auto member>
constexpr Field plain(std::string_view name) {
    using namespace schema_detail;
    return {.key = name,
            .name = name,
            .isPresent = isPresent<member>,
            .write = writeOrNull<member>,
            .assign = assignValue<member>};
}

/// A value under a key of another name; a null marker there is kept.
template <auto member>
constexpr Field mapped(std::string_view key, std::string_view name) {
    using namespace schema_detail;
    return {.key = key,
            .name = name,
            .kind = Field::Kind::mapped,
            .isPresent = isPresent<member>,
            .write = writeIfPresent<member>,
            .read = readValue<member>,
            .assign = assignValue<member>};
}

/// A whole number under a key of another name; a missing entry reads as 0.
template <auto member>
constexpr Field mappedInteger(std::string_view key, std::string_view name) {
    auto field = mapped<member>(key, name);
    field.read = schema_detail::readInteger<member>;
    return field;
}

/// A record in a record: no entry when it is absent, and left as it was by an entry that is missing or null.
template <auto member>
constexpr Field nested(std::string_view key) {
    using namespace schema_detail;
    return structured<member>(key, writeRecord<member>, readRecord<member>);
}

/// The same, but written as an empty dictionary when it is absent.
template <auto member>
constexpr Field nestedOrEmpty(std::string_view key) {
    using namespace schema_detail;
    return structured<member>(key, writeRecordOrEmpty<member>, readRecord<member>);
}

/// A list of records: an empty array when it is absent, an empty list when there is no array.
template <auto member>
constexpr Field list(std::string_view key) {
    using namespace schema_detail;
    return structured<member>(key, writeList<member>, readList<member>);
}

/// A list of records that is written as any other, and empty after reading whatever the entry holds.
template <auto member>
constexpr Field listThatReadsEmpty(std::string_view key) {
    using namespace schema_detail;
    return structured<member>(key, writeList<member>, readEmptyList<member>);
}

/// A list of records that follows the rules of a plain value: no entry of its own when it is absent, the null
/// marker when it is asked for all the same, and absent by a null marker.
template <auto member>
constexpr Field plainList(std::string_view name) {
    using namespace schema_detail;
    return {.key = name,
            .name = name,
            .isPresent = isPresent<member>,
            .write = writeListOrNull<member>,
            .assign = assignList<member>};
}

}  // namespace velmora
