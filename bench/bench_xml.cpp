// Loading and storing the XML form, beside rapidxml and pugixml reading into a typed tree of the same content, and pugixml writing
// from it.
// Both build and free their tree in each turn. Sizes are numbers of properties: 100 in a node, 10 nodes in an outer node.
#include "bench/bench_support.h"
#include "propdb/property_db.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <pugixml.hpp>
#include <rapidxml/rapidxml.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>

namespace {
using Value = std::variant<std::string, uint32_t, float, double, int64_t>;
const char* const kTypes[] = {"str", "u32", "r32", "r64", "i64"};  // by index()

struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
};

// What a program without the database would keep: hash maps of nodes and typed values.
struct Node {
    struct Entry {
        std::unique_ptr<Node> node;
        Value value;
    };
    std::unordered_map<std::string, Entry, TextHash, std::equal_to<>> entries;

    Entry& At(std::string_view name) {
        const auto found = entries.find(name);
        return found != entries.end() ? found->second : entries.try_emplace(std::string(name)).first->second;
    }
    Node& Child(std::string_view name) {
        Entry& entry = At(name);
        if (!entry.node) entry.node = std::make_unique<Node>();
        return *entry.node;
    }
    bool operator==(const Node& other) const {
        if (entries.size() != other.entries.size()) return false;
        for (const auto& [name, entry] : entries) {
            const auto found = other.entries.find(name);
            if (found == other.entries.end() || !entry.node != !found->second.node) return false;
            if (entry.node ? !(*entry.node == *found->second.node) : entry.value != found->second.value) return false;
        }
        return true;
    }
};

template <class Number>
Number Parsed(std::string_view text) {
    Number value{};
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}
std::string Shown(double value) {  // "%G"
    char text[40];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6).ptr;
    for (char* at = text; at != end; ++at)
        if (*at == 'e') *at = 'E';
    return {text, end};
}
std::string Shown(const Value& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* number = std::get_if<float>(&value)) return Shown(static_cast<double>(*number));
    if (const auto* number = std::get_if<double>(&value)) return Shown(*number);
    if (const auto* number = std::get_if<uint32_t>(&value)) return std::to_string(*number);
    return std::to_string(std::get<int64_t>(value));
}

// ---- the documents

struct Document {
    int size = 0;
    CPropertyDB database;
    Node tree;
    std::string xml;  // as the database stores it
};

Value RandomValue(int kind, bench::Random& random) {
    static const char* const words[] = {"Temperature",
                                        "Pressure",
                                        "Channel",
                                        "m\xE4tv\xE4rde",
                                        "Flow & level",
                                        "Humidity",
                                        "\xC5-givare",
                                        "Battery",
                                        "limit <high>",
                                        "\xB0"
                                        "C offset",
                                        "Serial",
                                        "Status"};
    switch (kind) {
        case 0:
            return std::string(words[random.Below(12)]) + ' ' + words[random.Below(12)] + ' ' +
                   std::to_string(random.Below(1000));
        case 1:
            return static_cast<uint32_t>(random.Next() >> (32 + random.Below(24)));
        case 2:
            return Parsed<float>(Shown((random.Unit() - 0.5) * 2000));
        case 3:
            return Parsed<double>(Shown((random.Unit() - 0.3) * std::pow(10.0, static_cast<double>(random.Below(12)) - 4)));
        default:
            return static_cast<int64_t>(1'400'000'000'000'000 + random.Below(400'000'000'000'000)) * (random.Below(8) ? 1 : -1);
    }
}

std::string StoredXml(CPropertyDB& database) {
    CMemFile file;
    BENCH_REQUIRE(database.StoreToFile(&file, 1, 0));
    return {reinterpret_cast<const char*>(file.GetBufferPtr()), static_cast<size_t>(file.GetLength())};
}

void Fill(Node& tree, CPropertyDB& database, int size) {
    static const char* const prefixes[] = {"sText", "nMode", "fLeft", "rOrg", "tTime"};
    bench::Random random(static_cast<uint64_t>(size));
    for (int i = 0; i < size; ++i) {
        const std::string outer = "Units" + std::to_string(i / 1000), inner = std::to_string(i / 100);
        const std::string name = prefixes[i % 5] + std::to_string(i);
        const std::string key = outer + '.' + inner + '.' + name;
        const Value value = RandomValue(i % 5, random);
        tree.Child(outer).Child(inner).At(name).value = value;
        const BOOL set = std::visit(
            [&](const auto& v) {
                if constexpr (std::is_same_v<std::decay_t<decltype(v)>, std::string>)
                    return database.SetValue(key.c_str(), v.c_str());
                else if constexpr (std::is_same_v<std::decay_t<decltype(v)>, int64_t>)
                    return database.SetValue(key.c_str(), static_cast<__int64>(v));
                else
                    return database.SetValue(key.c_str(), v);
            },
            value);
        BENCH_REQUIRE(set);
    }
}

Document& DocumentOf(int size) {
    static std::map<int, Document> documents;
    Document& document = documents[size];
    if (document.size == 0) {
        document.size = size;
        Fill(document.tree, document.database, size);
        document.xml = StoredXml(document.database);
    }
    return document;
}

// ---- this library

bool Load(CPropertyDB& database, std::string& xml) {
    CMemFile file(reinterpret_cast<BYTE*>(xml.data()), static_cast<UINT>(xml.size()));
    return database.LoadFromFile(&file, 1) != 0;
}

void LoadOurs(benchmark::State& state) {
    Document& document = DocumentOf(static_cast<int>(state.range(0)));
    CPropertyDB check;
    BENCH_REQUIRE(Load(check, document.xml) && StoredXml(check) == document.xml);
    for (auto _ : state) {
        CPropertyDB database;
        benchmark::DoNotOptimize(Load(database, document.xml));
    }
    bench::PerItem(state, document.size);
}

void StoreOurs(benchmark::State& state) {
    Document& document = DocumentOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        CMemFile file;
        benchmark::DoNotOptimize(document.database.StoreToFile(&file, 1, 0));
    }
    bench::PerItem(state, document.size);
}

// ---- the peers

Value ValueOf(std::string_view type, std::string_view text) {
    if (type == "str") return std::string(text);
    if (type == "u32") return Parsed<uint32_t>(text);
    if (type == "r32") return Parsed<float>(text);
    if (type == "r64") return Parsed<double>(text);
    return Parsed<int64_t>(text);
}

void Take(pugi::xml_node from, Node& node) {
    for (const pugi::xml_node child : from.children()) {
        const char* const name = child.attribute("name").value();
        if (!std::strcmp(child.name(), "PATH")) {
            Take(child, node.Child(name));
        } else {
            node.At(name).value = ValueOf(child.attribute("type").value(), child.child_value());
        }
    }
}

void Take(const rapidxml::xml_node<>& from, Node& node) {
    const auto textOf = [](const rapidxml::xml_base<>& part) { return std::string_view(part.value(), part.value_size()); };
    for (const auto* child = from.first_node(); child; child = child->next_sibling()) {
        const std::string_view name = textOf(*child->first_attribute("name"));
        if (std::string_view(child->name(), child->name_size()) == "PATH") {
            Take(*child, node.Child(name));
        } else {
            node.At(name).value = ValueOf(textOf(*child->first_attribute("type")), textOf(*child));
        }
    }
}

// It parses in place, so that it needs a copy of what others read as it is.
Node LoadRapid(const std::string& xml) {
    std::string text = xml;
    rapidxml::xml_document<> document;
    document.parse<0>(text.data());
    Node root;
    Take(*document.first_node("PROPERTYDB"), root);
    return root;
}

// The parser's own form of the letters: it is told that the bytes are not UTF-8, as this library's users would.
Node LoadPeer(const std::string& xml) {
    pugi::xml_document document;
    BENCH_REQUIRE(document.load_buffer(xml.data(), xml.size(), pugi::parse_default, pugi::encoding_utf8));
    Node root;
    Take(document.child("PROPERTYDB"), root);
    return root;
}

void Put(const Node& node, pugi::xml_node to) {
    for (const auto& [name, entry] : node.entries) {
        pugi::xml_node child = to.append_child(entry.node ? "PATH" : "PROPERTY");
        child.append_attribute("name").set_value(name.c_str());
        if (entry.node) {
            Put(*entry.node, child);
            continue;
        }
        child.append_attribute("type").set_value(kTypes[entry.value.index()]);
        child.append_attribute("size").set_value("1");
        child.text().set(Shown(entry.value).c_str());
    }
}

std::string StorePeer(const Node& tree) {
    struct Sink : pugi::xml_writer {
        std::string text;
        void write(const void* data, size_t size) override { text.append(static_cast<const char*>(data), size); }
    } sink;
    pugi::xml_document document;
    Put(tree, document.append_child("PROPERTYDB"));
    document.save(sink, " ");
    return std::move(sink.text);
}

void LoadPugixml(benchmark::State& state) {
    const Document& document = DocumentOf(static_cast<int>(state.range(0)));
    const std::string own = StorePeer(LoadPeer(document.xml));
    BENCH_REQUIRE(LoadPeer(own) == LoadPeer(document.xml));
    for (auto _ : state) {
        Node tree = LoadPeer(document.xml);
        benchmark::DoNotOptimize(tree);
    }
    bench::PerItem(state, document.size);
}

void LoadRapidxml(benchmark::State& state) {
    const Document& document = DocumentOf(static_cast<int>(state.range(0)));
    BENCH_REQUIRE(LoadRapid(document.xml) == LoadPeer(document.xml));
    for (auto _ : state) {
        Node tree = LoadRapid(document.xml);
        benchmark::DoNotOptimize(tree);
    }
    bench::PerItem(state, document.size);
}

void StorePugixml(benchmark::State& state) {
    const Document& document = DocumentOf(static_cast<int>(state.range(0)));
    const Node tree = LoadPeer(document.xml);  // the same texts, in the encoding it writes
    BENCH_REQUIRE(LoadPeer(StorePeer(tree)) == tree);
    for (auto _ : state) benchmark::DoNotOptimize(StorePeer(tree));
    bench::PerItem(state, document.size);
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
}
BENCHMARK(LoadOurs)->Name("xml/load/ours")->Apply(Sizes);
BENCHMARK(LoadRapidxml)->Name("xml/load/rapidxml")->Apply(Sizes);
BENCHMARK(LoadPugixml)->Name("xml/load/pugixml")->Apply(Sizes);
BENCHMARK(StoreOurs)->Name("xml/store/ours")->Apply(Sizes);
BENCHMARK(StorePugixml)->Name("xml/store/pugixml")->Apply(Sizes);
}  // namespace

BENCHMARK_MAIN();
