#include "commands/GlbModel.h"

#include <fmt/format.h>
#include <tiny_gltf.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <limits>
#include <ostream>
#include <streambuf>
#include <utility>
#include <vector>

#include "commands/CommandError.h"
#include "embedded/os/File.h"

namespace quoin::commands {

namespace {

/// Lengths in the file are 32 bits; the rest is for the JSON part.
constexpr std::uint64_t kMostBytes = 0xFFFFFFFFULL - 0x1000000ULL;

/// The triangles of a layer, three floats a corner.
struct Mesh {
  std::vector<float> positions;
  std::vector<float> normals;
  std::vector<std::uint32_t> indices;

  /// The index of this corner: that of one of the last, where it is there already. Faces of one
  /// plane share their corners, and those that stand side by side come one after another.
  std::uint32_t corner(const std::array<float, 3>& position, const std::array<float, 3>& normal) {
    constexpr std::size_t kLast = 64;
    const std::size_t count = positions.size() / 3;
    for (std::size_t i = count; i-- > count - std::min(count, kLast);) {
      if (std::equal(position.begin(), position.end(), positions.begin() + offset(i)) &&
          std::equal(normal.begin(), normal.end(), normals.begin() + offset(i))) {
        return static_cast<std::uint32_t>(i);
      }
    }
    positions.insert(positions.end(), position.begin(), position.end());
    normals.insert(normals.end(), normal.begin(), normal.end());
    return static_cast<std::uint32_t>(count);
  }

  std::uint64_t bytes() const {
    return sizeof(float) * (positions.size() + normals.size()) +
           sizeof(std::uint32_t) * indices.size();
  }

 private:
  static std::ptrdiff_t offset(std::size_t corner) {
    return static_cast<std::ptrdiff_t>(3 * corner);
  }
};

/// Newell's normal: that of the plane that fits the corners; upwards where they lie on a line.
AcGeVector3d normalOf(const std::vector<AcGePoint3d>& corners) {
  AcGeVector3d sum(0.0, 0.0, 0.0);
  for (std::size_t i = 0; i < corners.size(); ++i) {
    sum += (corners[i] - corners[0]).crossProduct(corners[(i + 1) % corners.size()] - corners[0]);
  }
  const double length = sum.length();
  return length > 0.0 ? sum / length : AcGeVector3d::kZAxis;
}

class MeshMaker {
 public:
  MeshMaker(const Model& model, const ModelForm& form) : m_form(form), m_origin(middleOf(model)) {
    m_meshes.resize(model.materials.size());
    model.forEachBody([&](const Model::Body& body) {
      Mesh& mesh = m_meshes[body.material];
      for (const WallPrism::Face& face : body.faces) {
        add(face, mesh);
      }
    });
  }

  const AcGePoint3d& origin() const { return m_origin; }
  std::vector<Mesh>& meshes() { return m_meshes; }

 private:
  /// The middle of the model, in whole units.
  AcGePoint3d middleOf(const Model& model) const {
    constexpr double kFar = std::numeric_limits<double>::infinity();
    AcGePoint3d least(kFar, kFar, kFar);
    AcGePoint3d greatest(-kFar, -kFar, -kFar);
    const auto add = [&](const AcGePoint3d& corner) {
      const AcGePoint3d point = m_form.place(corner);
      least = {std::min(least.x, point.x), std::min(least.y, point.y), std::min(least.z, point.z)};
      greatest = {std::max(greatest.x, point.x), std::max(greatest.y, point.y),
                  std::max(greatest.z, point.z)};
    };
    for (const WallPrism& wall : model.walls) {
      for (const AcGePoint3d& foot : {wall.startLeft, wall.startMid, wall.startRight, wall.endRight,
                                      wall.endMid, wall.endLeft}) {
        add(foot);
        add(foot + AcGeVector3d(0.0, 0.0, wall.height));
      }
    }
    for (const FloorSlab& slab : model.slabs) {
      std::for_each(slab.top.begin(), slab.top.end(), add);
    }
    return {std::round(0.5 * (least.x + greatest.x)), std::round(0.5 * (least.y + greatest.y)),
            std::round(0.5 * (least.z + greatest.z))};
  }

  void add(const WallPrism::Face& face, Mesh& mesh) const {
    std::vector<AcGePoint3d> corners;
    std::vector<std::array<float, 3>> positions;
    for (const AcGePoint3d& corner : face) {
      const AcGePoint3d point = m_form.place(corner);
      // Adding 0 makes one of the two zeros of the other.
      const std::array<float, 3> position{static_cast<float>(point.x - m_origin.x) + 0.0F,
                                          static_cast<float>(point.y - m_origin.y) + 0.0F,
                                          static_cast<float>(point.z - m_origin.z) + 0.0F};
      // What falls together as floats is one corner, here and in the faces beside this one.
      if (std::find(positions.begin(), positions.end(), position) == positions.end()) {
        corners.push_back(point);
        positions.push_back(position);
      }
    }
    if (positions.size() < 3) {
      return;
    }
    const AcGeVector3d normal = normalOf(corners);
    std::array<std::uint32_t, 4> numbers{};
    for (std::size_t i = 0; i < positions.size(); ++i) {
      numbers[i] = mesh.corner(positions[i], rounded(normal));
    }
    // A quadrilateral is parted so that both halves look where it looks.
    const std::size_t turn = positions.size() == 4 && !looksAlong(corners, normal) ? 1 : 0;
    for (std::size_t i = 1; i + 1 < positions.size(); ++i) {
      for (const std::size_t corner : {std::size_t{0}, i, i + 1}) {
        mesh.indices.push_back(numbers[(corner + turn) % positions.size()]);
      }
    }
  }

  /// To some millionths, so that faces of one plane have one normal.
  static std::array<float, 3> rounded(const AcGeVector3d& normal) {
    constexpr double kSteps = 1048576.0;  // 2^20: exact in a float
    const auto round = [](double part) {
      return static_cast<float>(std::round(part * kSteps) / kSteps) + 0.0F;
    };
    return {round(normal.x), round(normal.y), round(normal.z)};
  }

  /// Whether the triangles 0 1 2 and 0 2 3 do.
  static bool looksAlong(const std::vector<AcGePoint3d>& corners, const AcGeVector3d& normal) {
    const AcGeVector3d diagonal = corners[2] - corners[0];
    return (corners[1] - corners[0]).crossProduct(diagonal).dotProduct(normal) >= 0.0 &&
           diagonal.crossProduct(corners[3] - corners[0]).dotProduct(normal) >= 0.0;
  }

  const ModelForm& m_form;
  AcGePoint3d m_origin;
  std::vector<Mesh> m_meshes;
};

/// What screens show as the amount of light that it is, as glTF has colours. Four digits are more
/// than the eye has, and the same on every machine.
double lightOf(double shown) {
  constexpr double kDigits = 1.0e4;
  const double light = shown <= 0.04045 ? shown / 12.92 : std::pow((shown + 0.055) / 1.055, 2.4);
  return std::round(light * kDigits) / kDigits;
}

class GltfMaker {
 public:
  /// Takes the meshes out of the maker, so that there is one of each in memory.
  GltfMaker(const Model& model, MeshMaker& maker, std::uint64_t bytes) {
    m_gltf.asset.version = "2.0";
    m_gltf.asset.generator = "quoin " QUOIN_VERSION;
    m_gltf.buffers.resize(1);
    m_gltf.buffers[0].data.reserve(bytes);
    tinygltf::Node root;
    root.name = "model";
    root.translation = {maker.origin().x, maker.origin().y, maker.origin().z};
    for (std::size_t i = 0; i < maker.meshes().size(); ++i) {
      root.children.push_back(static_cast<int>(i) + 1);
    }
    m_gltf.nodes.push_back(std::move(root));
    for (std::size_t i = 0; i < maker.meshes().size(); ++i) {
      addMaterial(model.materials[i]);
      addMesh(model.materials[i].layer, maker.meshes()[i]);
    }
    tinygltf::Scene scene;
    scene.nodes.push_back(0);
    m_gltf.scenes.push_back(std::move(scene));
    m_gltf.defaultScene = 0;
  }

  const tinygltf::Model& gltf() const { return m_gltf; }

 private:
  void addMaterial(const ModelMaterial& material) {
    tinygltf::Material made;
    made.name = material.layer;
    made.pbrMetallicRoughness.baseColorFactor = {
        lightOf(material.color[0]), lightOf(material.color[1]), lightOf(material.color[2]), 1.0};
    made.pbrMetallicRoughness.metallicFactor = 0.0;
    m_gltf.materials.push_back(std::move(made));
  }

  void addMesh(const std::string& name, Mesh& mesh) {
    std::vector<double> least(3, std::numeric_limits<double>::infinity());
    std::vector<double> greatest(3, -std::numeric_limits<double>::infinity());
    for (std::size_t i = 0; i < mesh.positions.size(); ++i) {
      const double value = mesh.positions[i];
      least[i % 3] = std::min(least[i % 3], value);
      greatest[i % 3] = std::max(greatest[i % 3], value);
    }
    tinygltf::Primitive triangles;
    triangles.attributes["POSITION"] =
        addAccessor(mesh.positions, TINYGLTF_TYPE_VEC3, TINYGLTF_COMPONENT_TYPE_FLOAT);
    m_gltf.accessors.back().minValues = least;
    m_gltf.accessors.back().maxValues = greatest;
    triangles.attributes["NORMAL"] =
        addAccessor(mesh.normals, TINYGLTF_TYPE_VEC3, TINYGLTF_COMPONENT_TYPE_FLOAT);
    triangles.indices =
        addAccessor(mesh.indices, TINYGLTF_TYPE_SCALAR, TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT);
    triangles.material = static_cast<int>(m_gltf.materials.size()) - 1;
    triangles.mode = TINYGLTF_MODE_TRIANGLES;
    tinygltf::Mesh made;
    made.name = name;
    made.primitives.push_back(std::move(triangles));
    m_gltf.meshes.push_back(std::move(made));
    tinygltf::Node node;
    node.name = name;
    node.mesh = static_cast<int>(m_gltf.meshes.size()) - 1;
    m_gltf.nodes.push_back(std::move(node));
  }

  /// Empties the values.
  template <class Value>
  int addAccessor(std::vector<Value>& taken, int type, int componentType) {
    const std::vector<Value> values = std::move(taken);
    taken = {};
    std::vector<unsigned char>& buffer = m_gltf.buffers[0].data;
    tinygltf::BufferView view;
    view.buffer = 0;
    view.byteOffset = buffer.size();
    view.byteLength = sizeof(Value) * values.size();
    const bool isIndices = type == TINYGLTF_TYPE_SCALAR;
    view.target = isIndices ? TINYGLTF_TARGET_ELEMENT_ARRAY_BUFFER : TINYGLTF_TARGET_ARRAY_BUFFER;
    buffer.resize(buffer.size() + view.byteLength);
    // The format's numbers are in this machine's order of bytes (little-endian).
    std::memcpy(buffer.data() + view.byteOffset, values.data(), view.byteLength);
    m_gltf.bufferViews.push_back(std::move(view));
    tinygltf::Accessor accessor;
    accessor.bufferView = static_cast<int>(m_gltf.bufferViews.size()) - 1;
    accessor.componentType = componentType;
    accessor.type = type;
    accessor.count = values.size() / (isIndices ? 1 : 3);
    m_gltf.accessors.push_back(std::move(accessor));
    return static_cast<int>(m_gltf.accessors.size()) - 1;
  }

  tinygltf::Model m_gltf;
};

/// Passes what is written on to a file. A stream swallows what its buffer throws: it is kept.
class FileBuffer : public std::streambuf {
 public:
  explicit FileBuffer(os::AtomicFile& file) : m_file(file) {}
  void throwFailure() const {
    if (m_failure) {
      std::rethrow_exception(m_failure);
    }
  }

 protected:
  std::streamsize xsputn(const char* bytes, std::streamsize count) override {
    try {
      m_file.write({bytes, static_cast<std::size_t>(count)});
      return count;
    } catch (const os::FileFailure&) {
      m_failure = std::current_exception();
      return 0;
    }
  }
  int_type overflow(int_type letter) override {
    const char byte = traits_type::to_char_type(letter);
    return xsputn(&byte, 1) == 1 ? traits_type::not_eof(letter) : traits_type::eof();
  }

 private:
  os::AtomicFile& m_file;
  std::exception_ptr m_failure;
};

}  // namespace

void writeGlb(const Model& model, const ModelForm& form, const std::filesystem::path& file) {
  MeshMaker maker(model, form);
  std::uint64_t bytes = 0;
  for (const Mesh& mesh : maker.meshes()) {
    bytes += mesh.bytes();
  }
  if (bytes > kMostBytes) {
    throw CommandError(ExitCode::OutputUnwritable,
                       file.string() + ": the model is larger than the 4 GB of a .glb file");
  }
  const GltfMaker gltf(model, maker, bytes);
  try {
    os::AtomicFile output(file.string());
    FileBuffer buffer(output);
    std::ostream stream(&buffer);
    tinygltf::TinyGLTF writer;
    const bool isWritten = writer.WriteGltfSceneToStream(&gltf.gltf(), stream, false, true);
    buffer.throwFailure();
    if (!isWritten || !stream) {
      throw CommandError(ExitCode::OutputUnwritable, file.string() + ": cannot write the model");
    }
    output.commit();
  } catch (const os::FileFailure& failure) {
    throw CommandError(ExitCode::OutputUnwritable, fmt::format("{}: cannot write the model: {}",
                                                               file.string(), failure.what()));
  }
}

}  // namespace quoin::commands
