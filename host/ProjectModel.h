// The CAD product's project model, as far as this module uses it: the project manager
// service with its current project, the nodes of the project's model with their properties,
// and the mapping between model nodes and the drawing entities that show them.
#pragma once

#include <cstdint>

#include "PlatformApi.h"
#include "afxwin.h"

class AcDbObjectId;

/// The type of a project's root node, as IModelNode::GetType() returns it.
inline constexpr std::int32_t ROOT_MODEL = 0;

/// A value of a node's property: nothing, a number, a truth value or a text.
class PLATFORM_API CVariantData {
 public:
  CVariantData() = default;
  CVariantData(double value) : m_type(Type::Number), m_number(value) {}
  CVariantData(std::int32_t value) : m_type(Type::Number), m_number(value) {}
  CVariantData(bool value) : m_type(Type::Number), m_number(value ? 1.0 : 0.0) {}
  CVariantData(const CString& value) : m_type(Type::Text), m_text(value) {}

  /// The number; of a text the number that it spells. 0 for nothing and for other texts.
  operator double() const { return m_type == Type::Text ? NumberOfText() : m_number; }
  /// The text; empty for anything else.
  const CString& GetText() const { return m_text; }
  bool IsEmpty() const { return m_type == Type::Nothing; }

 private:
  double NumberOfText() const;

  enum class Type : std::uint8_t { Nothing, Number, Text };
  Type m_type = Type::Nothing;
  double m_number = 0.0;
  CString m_text;
};

/// Names the map that a node belongs to in the mapping service. Opaque: obtained from a node
/// and handed on unchanged.
using ModelMapKey = void*;

/// A node of the project's model. The platform owns it.
class PLATFORM_API IModelNode {
 public:
  virtual std::int32_t GetType() const = 0;
  /// The property's value; an empty value for a property that the node does not have.
  virtual CVariantData GetProperty(std::int32_t propertyId) const = 0;
  virtual ModelMapKey GetMapKey() const = 0;

 protected:
  ~IModelNode() = default;
};

class PLATFORM_API IProject {
 public:
  /// The root of the project's model; null when the project has none.
  virtual IModelNode* GetRootModelNode() = 0;

 protected:
  ~IProject() = default;
};

/// The service ServiceName::kProjectManager.
class PLATFORM_API IProjectManagerService {
 public:
  /// The open project; null when none is open.
  virtual IProject* GetCurrentProject() = 0;

 protected:
  ~IProjectManagerService() = default;
};

/// One map between model nodes and drawing entities.
class PLATFORM_API IEntityModelMapping {
 public:
  /// The id of the entity that represents the node; the null id when none does.
  virtual AcDbObjectId GetEntityId(const IModelNode* node) const = 0;

 protected:
  ~IEntityModelMapping() = default;
};

/// The service ServiceName::kEntityModelMapping.
class PLATFORM_API IEntityModelMappingService {
 public:
  /// The map under this key, an empty one for a key that no entity was mapped under.
  virtual IEntityModelMapping* GetMapping(ModelMapKey key) = 0;

 protected:
  ~IEntityModelMappingService() = default;
};
