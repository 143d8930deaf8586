#pragma once

#include "platform/Value.h"

#include <memory>
#include <string_view>
#include <vector>

namespace velmora {

using platform::Array;
using platform::Dictionary;
using platform::Property;
using platform::Value;

class Schema;

using Keys = std::vector<std::string_view>;

/// A record that is stored or sent: its properties convert to and from a dictionary of JSON values.
///
/// To write a record, ask it for the dictionary of its own keys; to read one, make a fresh one and set its
/// values. Every property may be absent, and nothing that comes in is checked: a plain property keeps
/// whatever kind of value it is given. Not safe to use from two threads at once, unless a record says so of
/// itself.
class VLSerializedModel {
public:
    virtual ~VLSerializedModel() = default;

    /// The names of the properties that are present. They are not always keys of the dictionary: see
    /// `Schema`.
    [[nodiscard]] Keys keys() const;

    /// Whether a value is present and not the JSON null marker; a null pointer is an absent value.
    [[nodiscard]] static bool isValidValue(const Value* value) noexcept { return platform::isValid(value); }

    /// Called with every entry that names no property. Does nothing: unknown entries are dropped.
    void setValue(const Value& value, std::string_view forUndefinedKey) noexcept;

    /// One entry for each key that names a plain property: its value, or the null marker where it is absent.
    /// The other kinds of property are written whether or not they are asked for.
    [[nodiscard]] Dictionary dictionaryWithValuesForKeys(const Keys& keys) const;

    /// Sets each property that an entry names; a null marker makes it absent. The values go out of the
    /// dictionary. A null pointer is an empty dictionary.
    void setValuesForKeysWithDictionary(Dictionary* dictionary);

    /// The table of this record's class.
    [[nodiscard]] virtual const Schema& schema() const = 0;

protected:
    VLSerializedModel() = default;
    VLSerializedModel(const VLSerializedModel&) = default;
    VLSerializedModel& operator=(const VLSerializedModel&) = default;
};

/// An ordered list of records that its owners share, as its elements are shared. Absent when null.
template <class Model>
using ModelList = std::shared_ptr<std::vector<std::shared_ptr<Model>>>;

template <class Model>
[[nodiscard]] ModelList<Model> makeList(std::vector<std::shared_ptr<Model>> elements = {}) {
    return std::make_shared<std::vector<std::shared_ptr<Model>>>(std::move(elements));
}

/// What an object that converts as a record is, seen as one. An overload stands beside each class that is no
/// record but holds one.
[[nodiscard]] inline const VLSerializedModel& asRecord(const VLSerializedModel& model) { return model; }

/// The dictionary of a record's own keys: what is sent and stored.
[[nodiscard]] inline Dictionary dictionaryOf(const VLSerializedModel& model) {
    return model.dictionaryWithValuesForKeys(model.keys());
}

/// A fresh record filled from a dictionary, as `setValuesForKeysWithDictionary` does it.
template <class Model>
[[nodiscard]] std::shared_ptr<Model> recordFrom(Dictionary* dictionary) {
    auto model = std::make_shared<Model>();
    model->setValuesForKeysWithDictionary(dictionary);
    return model;
}

}  // namespace velmora
