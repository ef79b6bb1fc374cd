#include "embedded/dwg/container/Container.h"
#include "embedded/dxf/FileError.h"

namespace quoin::dwg::container {

std::unique_ptr<Container> openCodedFile(std::string /*bytes*/, const FileHead& /*head*/,
                                         Warnings& /*warnings*/) {
  throw dxf::FileError(Acad::eUnsupportedFileFormat, "DWG drawings of R2007 are not read");
}

}  // namespace quoin::dwg::container
