#pragma once
// The .x reading behind LoadMeshFromX, without a device: the check, the model reader and the
// merge of the file's meshes into one.

#include <cstdint>
#include <memory>
#include <vector>

#include "graphics/d3d8.h"

namespace ostrel::graphics {

struct XModelData {
  MeshData mesh;
  std::shared_ptr<D3DXBuffer> materials;
};

// The file's meshes, under their frames' transforms, as one mesh whose subsets are the
// materials in file order. Throws D3DError with the cause when the file is refused.
XModelData readXModel(const std::vector<uint8_t>& bytes);

}  // namespace ostrel::graphics
