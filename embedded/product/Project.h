// Projects of the CAD product in memory: a root model node with properties, further nodes,
// and the manager that knows which project is the current one.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/ProjectModel.h"
#include "hostapi.h"

namespace quoin::product {

class HOST_API ModelNode : public IModelNode {
 public:
  ModelNode(std::int32_t type, ModelMapKey mapKey) : m_type(type), m_mapKey(mapKey) {}
  virtual ~ModelNode() = default;

  std::int32_t GetType() const override { return m_type; }
  CVariantData GetProperty(std::int32_t propertyId) const override;
  ModelMapKey GetMapKey() const override { return m_mapKey; }

  void setType(std::int32_t type) { m_type = type; }
  void setProperty(std::int32_t propertyId, const CVariantData& value);
  /// How often GetProperty has been called.
  std::uint64_t reads() const { return m_reads; }

 private:
  std::int32_t m_type;
  ModelMapKey m_mapKey;
  std::map<std::int32_t, CVariantData> m_properties;
  mutable std::uint64_t m_reads = 0;
};

/// A project with its model. All its nodes belong to one map of the entity mapping, whose key
/// is the project itself.
class HOST_API Project : public IProject {
 public:
  Project(std::wstring name, double scale);
  virtual ~Project();
  Project(const Project&) = delete;
  Project& operator=(const Project&) = delete;

  IModelNode* GetRootModelNode() override { return m_root.get(); }

  const std::wstring& name() const { return m_name; }
  ModelNode& root() { return *m_root; }
  /// The scale: property 11 of the root node.
  void setScale(double scale);
  double scale() const;

  /// A further node; the project owns it.
  ModelNode& addNode(std::int32_t type);

 private:
  std::wstring m_name;
  std::unique_ptr<ModelNode> m_root;
  std::vector<std::unique_ptr<ModelNode>> m_nodes;
};

/// The open projects and the current one among them.
class HOST_API ProjectManager {
 public:
  ProjectManager();
  ~ProjectManager();

  /// Opens a new project and makes it the current one.
  Project& open(std::wstring name, double scale);
  /// Closes a project. When it was the current one, the one opened last before it is current
  /// then, none if there is none.
  void close(Project& project);
  /// The current project; null when none is open.
  Project* current() const { return m_current; }
  void setCurrent(Project& project) { m_current = &project; }
  std::size_t count() const { return m_projects.size(); }

 private:
  std::vector<std::unique_ptr<Project>> m_projects;
  Project* m_current = nullptr;
};

}  // namespace quoin::product
