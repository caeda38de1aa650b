#include "graphics/XFileInflate.h"

#include <zlib.h>

#include <algorithm>
#include <memory>
#include <string>

namespace ostrel::graphics {

namespace {

// After the header: the inflated size (4 bytes) and the first block's inflated size (2 bytes);
// then blocks of [length 2][magic "CK" 2][length bytes]. The length counts the deflate data
// and the next block's inflated size, so the last block's length reaches 2 bytes past the file.
constexpr size_t kFirstBlock = 16 + 6;
constexpr uint32_t kBlockSize = 32786;  // the most that the reader inflates a block to
constexpr uint16_t kMagic = 'C' | 'K' << 8;
// The reader allocates a full block per block before it inflates any. Real files fill their
// blocks and pack them at most some tens of times; tiny blocks would make it ask for gigabytes.
constexpr uint64_t kMaxPacking = 64;
constexpr uint64_t kFreeBytes = 32 << 20;

uint16_t word(const std::vector<uint8_t>& b, size_t at) {
  return static_cast<uint16_t>(b[at] | b[at + 1] << 8);
}

struct Inflater {
  Inflater() {
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) throw XFileRefusal("no memory to inflate", 0);
  }
  ~Inflater() { inflateEnd(&stream); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;
  z_stream stream{};
};

}  // namespace

std::vector<uint8_t> inflateXFile(const std::vector<uint8_t>& file) {
  std::vector<uint8_t> out;
  Inflater inflater;
  z_stream& z = inflater.stream;
  std::vector<uint8_t> block(kBlockSize);
  uint64_t blocks = 0;
  for (size_t at = kFirstBlock; at + 3 < file.size(); ++blocks) {
    const uint16_t length = word(file, at);
    if (length >= kBlockSize) throw XFileRefusal("a compressed block longer than a block", at);
    if (word(file, at + 2) != kMagic) throw XFileRefusal("a compressed block without \"CK\"", at);
    at += 4;
    if (at + length > file.size() + 2) throw XFileRefusal("a compressed block past the end", at);
    // Only bytes inside the file are given: a good stream ends before the 2 bytes that the
    // last block's length reaches past it.
    z.next_in = const_cast<Bytef*>(file.data() + at);
    z.avail_in = static_cast<uInt>(std::min<size_t>(length, file.size() - at));
    z.next_out = block.data();
    z.avail_out = kBlockSize;
    const int result = inflate(&z, Z_SYNC_FLUSH);
    if (result != Z_STREAM_END) {
      throw XFileRefusal(result == Z_OK || result == Z_BUF_ERROR
                             ? "a compressed block that does not end inside the file"
                             : "a compressed block that does not inflate",
                         at);
    }
    const uInt produced = kBlockSize - z.avail_out;
    // The reader goes on from a reset stream with this block as the history of the next.
    inflateReset(&z);
    inflateSetDictionary(&z, block.data(), produced);
    out.insert(out.end(), block.begin(), block.begin() + produced);
    at += length;
  }
  if (blocks * kBlockSize > std::max<uint64_t>(kFreeBytes, kMaxPacking * file.size())) {
    throw XFileRefusal(
        std::to_string(blocks) + " compressed blocks in " + std::to_string(file.size()) + " bytes",
        kFirstBlock);
  }
  return out;
}

}  // namespace ostrel::graphics
