#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundation/stream/Export.h"
#include "foundation/utl/NCDataMatrixForward.h"

/// One node of a hierarchical key store. A handle closes its section when it is deleted.
///
/// Reads leave the destination untouched and return false when the key is missing or holds a value
/// of another kind; numbers widen (an int key can be read as float or double, a double key as
/// float). Writes replace the key's value, whatever its kind was. Sections of one name are numbered
/// from 1.
class QORVA_EXPORT ConfigurationSection {
  public:
    ConfigurationSection() = default;
    ConfigurationSection(const ConfigurationSection&) = delete;
    ConfigurationSection& operator=(const ConfigurationSection&) = delete;
    virtual ~ConfigurationSection();

    /// Removes all child sections of that name, with their content.
    virtual void RemoveSection(const std::string& name) = 0;
    /// The index-th child of that name, counted from 1, or a null handle.
    [[nodiscard]] virtual std::unique_ptr<const ConfigurationSection> OpenSection(
        const std::string& name, int index) const = 0;
    /// The first child of that name or a null handle.
    [[nodiscard]] virtual std::unique_ptr<const ConfigurationSection> OpenSection(
        const std::string& name) const = 0;
    /// The index-th child of that name, counted from 1; missing ones up to it are made.
    virtual std::unique_ptr<ConfigurationSection> OpenOrCreateSection(const std::string& name,
                                                                      int index) = 0;
    virtual std::unique_ptr<ConfigurationSection> OpenOrCreateSection(const std::string& name) = 0;
    [[nodiscard]] virtual int SectionCount(const std::string& name) const = 0;
    /// Removes this section with its content; on the root it removes the content only. The handle
    /// must not be used afterwards.
    virtual void RemoveThis() = 0;

    virtual bool ReadBool(const char* key, bool* value) const = 0;
    virtual bool ReadFloat(const char* key, float* value) const = 0;
    virtual bool ReadDouble(const char* key, double* value) const = 0;
    virtual bool ReadInt(const char* key, int* value) const = 0;
    virtual bool ReadMatrix(const char* key, NCDataMatrix<float>* value) const = 0;
    virtual bool ReadString(const char* key, std::string* value) const = 0;
    /// Returns the number of items read, 0 when there is no such list. Empty items are kept. A
    /// plain string is split at the separator.
    virtual int ReadStringList(const char* key,
                               std::vector<std::string>* value,
                               char separator) const = 0;

    virtual void WriteBool(const char* key, bool value) = 0;
    virtual void WriteDouble(const char* key, double value) = 0;
    virtual void WriteIntVector(const char* key, const std::vector<int>& value) = 0;
    virtual void WriteInt(const char* key, int value) = 0;
    virtual void WriteMatrix(const char* key, const NCDataMatrix<float>& value) = 0;
    virtual void WriteStringList(const char* key,
                                 const std::vector<std::string>& value,
                                 char separator) = 0;

    virtual bool ReadIntVector(const char* key, std::vector<int>* value) const = 0;
    virtual bool ReadFloatVector(const char* key, std::vector<float>* value) const = 0;
    virtual void WriteFloatVector(const char* key, const std::vector<float>& value) = 0;
    /// Brings what was written to the storage behind the section, if it has one.
    virtual void Flush() = 0;

    void WriteKey(const char* key, const std::string& value) { WriteString(key, value); }

  private:
    virtual void WriteString(const char* key, const std::string& value) = 0;
};
