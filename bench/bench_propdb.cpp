// Values set and read by key, beside the same tree of nested std::unordered_map written by hand: 10,000 keys of three segments
// with 100 children a node, and 20,000 children in one node. Keys are visited in a shuffled order; a turn of the loop handles all
// of them.
#include "bench/bench_support.h"
#include "propdb/property_db.h"

#include <algorithm>
#include <memory>
#include <numeric>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace {
const std::string kTexts[4] = {"Temperature inlet", "Pressure outlet 2", "Flow", "Relative humidity, room"};

// The value of key i is a double, an int or a text in turn; what is read is folded into one number.
struct Keys {
    std::vector<std::string> keys;
    std::vector<size_t> order;
    double expected = 0;
};

const Keys& KeysOf(bool flat) {
    static Keys all[2];
    Keys& result = all[flat];
    if (!result.keys.empty()) return result;
    const size_t count = flat ? 20000 : 10000;
    for (size_t i = 0; i < count; ++i) {
        result.keys.push_back(flat ? "Top.Flat.Key" + std::to_string(i)
                                   : "Units." + std::to_string(i / 100) + ".Name" + std::to_string(i % 100));
        result.expected += i % 3 == 0   ? static_cast<double>(i) / 4
                           : i % 3 == 1 ? static_cast<double>(i)
                                        : static_cast<double>(kTexts[i % 4].size());
    }
    result.order.resize(count);
    std::iota(result.order.begin(), result.order.end(), size_t{0});
    bench::Random random(7);
    for (size_t i = count; i > 1; --i) std::swap(result.order[i - 1], result.order[random.Below(i)]);
    return result;
}

class Ours {
public:
    template <class Value>
    void Set(const std::string& key, const Value& value) {
        m_database.SetValue(key.c_str(), value);
    }
    void Set(const std::string& key, const std::string& value) { m_database.SetValue(key.c_str(), value.c_str()); }
    double Get(const std::string& key, double) {
        double value = 0;
        m_database.GetValue(key.c_str(), value);
        return value;
    }
    int Get(const std::string& key, int) {
        int value = 0;
        m_database.GetValue(key.c_str(), value);
        return value;
    }
    size_t Length(const std::string& key) {
        CString value;
        m_database.GetValue(key.c_str(), value);
        return static_cast<size_t>(value.GetLength());
    }
    size_t Names() {
        CStringArray names;
        m_database.Enum("Top.Flat", names, 0, 1);
        return static_cast<size_t>(names.GetSize());
    }

private:
    CPropertyDB m_database;
};

struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
};

// The limit: no quotes in keys, no kinds that are arrays, no error flag, nobody else to tell.
class ByHand {
    struct Node;
    struct Entry {
        std::unique_ptr<Node> node;
        std::variant<std::string, uint32_t, double> value;
    };
    struct Node {
        std::unordered_map<std::string, Entry, TextHash, std::equal_to<>> entries;
    };

public:
    void Set(const std::string& key, double value) { At(key).value = value; }
    void Set(const std::string& key, int value) { At(key).value = static_cast<uint32_t>(value); }
    void Set(const std::string& key, const std::string& value) {
        auto& stored = At(key).value;
        if (auto* text = std::get_if<std::string>(&stored))
            *text = value;
        else
            stored = value;
    }
    double Get(const std::string& key, double) { return std::get<double>(Find(key).value); }
    int Get(const std::string& key, int) { return static_cast<int>(std::get<uint32_t>(Find(key).value)); }
    size_t Length(const std::string& key) {
        const std::string value = std::get<std::string>(Find(key).value);
        return value.size();
    }
    size_t Names() {
        std::vector<std::string> names;
        for (const auto& [name, entry] : m_root.entries.find("Top")->second.node->entries.find("Flat")->second.node->entries)
            names.push_back(name);
        std::sort(names.begin(), names.end());
        return names.size();
    }

private:
    Entry& At(std::string_view key) {
        Node* node = &m_root;
        for (;;) {
            const size_t dot = key.find('.');
            const std::string_view name = key.substr(0, dot);
            auto found = node->entries.find(name);
            if (found == node->entries.end()) found = node->entries.try_emplace(std::string(name)).first;
            if (dot == key.npos) return found->second;
            if (!found->second.node) found->second.node = std::make_unique<Node>();
            node = found->second.node.get();
            key.remove_prefix(dot + 1);
        }
    }
    const Entry& Find(std::string_view key) {
        const Node* node = &m_root;
        for (;;) {
            const size_t dot = key.find('.');
            const Entry& entry = node->entries.find(key.substr(0, dot))->second;
            if (dot == key.npos) return entry;
            node = entry.node.get();
            key.remove_prefix(dot + 1);
        }
    }
    Node m_root;
};

template <class Store>
void SetAll(Store& store, const Keys& keys) {
    for (const size_t i : keys.order) {
        if (i % 3 == 0)
            store.Set(keys.keys[i], static_cast<double>(i) / 4);
        else if (i % 3 == 1)
            store.Set(keys.keys[i], static_cast<int>(i));
        else
            store.Set(keys.keys[i], kTexts[i % 4]);
    }
}
template <class Store>
double GetAll(Store& store, const Keys& keys) {
    double sum = 0;
    for (const size_t i : keys.order) {
        if (i % 3 == 0)
            sum += store.Get(keys.keys[i], 0.0);
        else if (i % 3 == 1)
            sum += store.Get(keys.keys[i], 0);
        else
            sum += static_cast<double>(store.Length(keys.keys[i]));
    }
    return sum;
}

template <class Store>
void Get(benchmark::State& state) {
    const Keys& keys = KeysOf(state.range(0) == 20000);
    Store store;
    SetAll(store, keys);
    BENCH_REQUIRE(GetAll(store, keys) == keys.expected);
    for (auto _ : state) benchmark::DoNotOptimize(GetAll(store, keys));
    bench::PerItem(state, static_cast<double>(keys.keys.size()));
}

template <class Store>
void Overwrite(benchmark::State& state) {
    const Keys& keys = KeysOf(state.range(0) == 20000);
    Store store;
    SetAll(store, keys);
    for (auto _ : state) SetAll(store, keys);
    BENCH_REQUIRE(GetAll(store, keys) == keys.expected);
    bench::PerItem(state, static_cast<double>(keys.keys.size()));
}

template <class Store>
void SetNew(benchmark::State& state) {
    const Keys& keys = KeysOf(state.range(0) == 20000);
    auto store = std::make_unique<Store>();
    for (auto _ : state) {
        SetAll(*store, keys);
        state.PauseTiming();
        BENCH_REQUIRE(GetAll(*store, keys) == keys.expected);
        store = std::make_unique<Store>();
        state.ResumeTiming();
    }
    bench::PerItem(state, static_cast<double>(keys.keys.size()));
}

template <class Store>
void SortedNames(benchmark::State& state) {
    const Keys& keys = KeysOf(true);
    Store store;
    SetAll(store, keys);
    BENCH_REQUIRE(store.Names() == keys.keys.size());
    for (auto _ : state) benchmark::DoNotOptimize(store.Names());
    bench::PerItem(state, static_cast<double>(keys.keys.size()));
}

// The argument is the number of keys: 10,000 with 100 children a node, or 20,000 in one node.
BENCHMARK(Get<Ours>)->Name("keys/get/ours")->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(Get<ByHand>)->Name("keys/get/by_hand")->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(Overwrite<Ours>)->Name("keys/overwrite/ours")->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(Overwrite<ByHand>)->Name("keys/overwrite/by_hand")->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(SetNew<Ours>)->Name("keys/set_new/ours")->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(SetNew<ByHand>)->Name("keys/set_new/by_hand")->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(SortedNames<Ours>)->Name("keys/sorted_names/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(SortedNames<ByHand>)->Name("keys/sorted_names/by_hand")->Unit(benchmark::kMillisecond);
}  // namespace

BENCHMARK_MAIN();
