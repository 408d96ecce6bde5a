// A version resource is a tree of nodes: length, length of the value, kind, name in 16-bit characters, value, children; value and
// children begin at multiples of 4. The block that callers hold is the resource as it stands and then room for each of its 16-bit
// units in this house's text: one byte of Windows-1252, or as many as UTF-8 takes at most. So a text of the resource has its
// narrow twin at a place that follows from its offset, and looking up changes nothing.
#include "platform/posix/resources/version.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "platform/posix/kernel/errors.h"
#include "platform/posix/resources/version_internal.h"
#include "platform/posix/text/text_internal.h"

using namespace orvik::detail;

namespace {

constexpr size_t kNodeHeader = 6;

size_t WordAt(const unsigned char* block, size_t at) { return static_cast<size_t>(block[at] | block[at + 1] << 8); }
size_t Align(size_t offset) { return (offset + 3) & ~size_t{3}; }

struct Node {
    size_t end;                 // behind its last child
    size_t name, nameLength;    // in bytes from the block's start; in characters
    size_t value, valueLength;  // in bytes
    bool text;
    size_t children;
};

// The node at `at`, which must lie before `limit`. None where its announced length has no room for it; what it announces beyond
// its own end is cut to it.
std::optional<Node> NodeAt(const unsigned char* block, size_t at, size_t limit) {
    if (at + kNodeHeader > limit) return std::nullopt;
    const size_t length = WordAt(block, at);
    if (length < kNodeHeader) return std::nullopt;
    Node node = {};
    node.end = std::min(at + length, limit);
    node.text = WordAt(block, at + 4) == 1;
    node.name = at + kNodeHeader;
    size_t p = node.name;
    while (p + 2 <= node.end && WordAt(block, p) != 0) p += 2;
    node.nameLength = (p - node.name) / 2;
    node.value = std::min(Align(p + 2), node.end);
    const size_t announced = WordAt(block, at + 2) * (node.text ? 2 : 1);
    node.valueLength = std::min(announced, node.end - node.value);
    node.children = Align(node.value + node.valueLength);
    return node;
}

size_t BytesOfUnit() { return HouseIsUtf8() ? 3 : 1; }

// The twin of the 16-bit units from an offset on.
char* Twin(const unsigned char* block, size_t offset) {
    const size_t size = WordAt(block, 0);
    return const_cast<char*>(reinterpret_cast<const char*>(block)) + Align(size) + offset / 2 * BytesOfUnit();
}

std::string HouseText(const unsigned char* block, size_t offset, size_t length) {
    std::u16string text;
    for (size_t i = 0; i < length; ++i) text += static_cast<char16_t>(WordAt(block, offset + 2 * i));
    return HouseFromUtf16(text);
}

bool HasName(const unsigned char* block, const Node& node, std::string_view name) {
    return CompareNoCase(HouseText(block, node.name, node.nameLength), name) == 0;
}

std::optional<Node> Child(const unsigned char* block, const Node& parent, std::string_view name) {
    for (size_t at = parent.children; at < parent.end;) {
        const auto node = NodeAt(block, at, parent.end);
        if (!node) break;
        if (HasName(block, *node, name)) return node;
        at = Align(node->end);
    }
    return std::nullopt;
}

size_t BlockSize(size_t resource) { return Align(resource) + resource / 2 * BytesOfUnit() + 1; }

// The length of a node's text up to its terminator, in units.
size_t TextLength(const unsigned char* block, const Node& node) {
    size_t length = 0;
    while (2 * length + 2 <= node.valueLength && WordAt(block, node.value + 2 * length) != 0) ++length;
    return length;
}

// The twins of the texts between two offsets, each within the room of its units.
void WriteTwins(const unsigned char* block, size_t from, size_t to) {
    // One after the other, however deep they lie: a node's children follow what it says of itself.
    while (const auto node = NodeAt(block, from, to)) {
        if (node->text) {
            const std::string text = HouseText(block, node->value, TextLength(block, *node));
            std::memcpy(Twin(block, node->value), text.data(), text.size());
        }
        from = node->valueLength > 0 && node->text ? Align(node->end) : node->children;
    }
}

// The resource, if its outermost node is one: its length is cut to the bytes that are there, to an even number.
DWORD ReadVersionNode(LPCSTR name, std::vector<unsigned char>& bytes) {
    if (name == nullptr || *name == 0) return name == nullptr ? ERROR_INVALID_PARAMETER : ERROR_PATH_NOT_FOUND;
    const DWORD error = ReadVersionResource(name, bytes);
    if (error != ERROR_SUCCESS) return error;
    if (bytes.size() < kNodeHeader) return ERROR_RESOURCE_DATA_NOT_FOUND;
    const size_t length = std::min(WordAt(bytes.data(), 0), bytes.size()) & ~size_t{1};
    if (length < kNodeHeader) return ERROR_RESOURCE_DATA_NOT_FOUND;
    bytes.resize(length);
    bytes[0] = static_cast<unsigned char>(length);
    bytes[1] = static_cast<unsigned char>(length >> 8);
    return ERROR_SUCCESS;
}

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

}  // namespace

DWORD GetFileVersionInfoSizeA(LPCSTR file, LPDWORD zero) {
    if (zero != nullptr) *zero = 0;
    std::vector<unsigned char> bytes;
    const DWORD error = ReadVersionNode(file, bytes);
    if (error != ERROR_SUCCESS) return static_cast<DWORD>(Fail(error));
    return static_cast<DWORD>(BlockSize(bytes.size()));
}

BOOL GetFileVersionInfoA(LPCSTR file, DWORD, DWORD size, LPVOID block) {
    if (block == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    std::vector<unsigned char> bytes;
    const DWORD error = ReadVersionNode(file, bytes);
    if (error != ERROR_SUCCESS) return Fail(error);
    if (size < BlockSize(bytes.size())) return Fail(ERROR_INSUFFICIENT_BUFFER);
    auto* out = static_cast<unsigned char*>(block);
    std::memset(out, 0, size);
    std::memcpy(out, bytes.data(), bytes.size());
    if (HouseIsUtf8()) {
        WriteTwins(out, 0, bytes.size());
        return TRUE;
    }
    char* twin = Twin(out, 0);
    for (size_t at = 0; at < bytes.size(); at += 2) {
        const int byte = ByteFromUnicode(static_cast<char32_t>(WordAt(out, at)));
        *twin++ = static_cast<char>(byte < 0 ? '?' : byte);
    }
    return TRUE;
}

BOOL VerQueryValueA(LPCVOID block, LPCSTR path, LPVOID* value, UINT* length) {
    if (block == nullptr || path == nullptr || value == nullptr || length == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    const auto* bytes = static_cast<const unsigned char*>(block);
    auto node = NodeAt(bytes, 0, WordAt(bytes, 0));
    for (std::string_view rest = path; node && !rest.empty();) {
        const size_t end = std::min(rest.find('\\'), rest.size());
        if (end > 0) node = Child(bytes, *node, rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    if (!node) return Fail(ERROR_RESOURCE_TYPE_NOT_FOUND);
    // A text that is not there is the empty one at the block's end: behind its name the next node begins.
    const size_t text = node->valueLength > 0 ? node->value : WordAt(bytes, 0);
    *value = node->text ? static_cast<LPVOID>(Twin(bytes, text)) : const_cast<unsigned char*>(bytes) + node->value;
    const bool longer = node->text && HouseIsUtf8() && node->valueLength > 0;
    *length = static_cast<UINT>(longer       ? std::strlen(static_cast<char*>(*value)) + 1
                                : node->text ? node->valueLength / 2
                                             : node->valueLength);
    return TRUE;
}
