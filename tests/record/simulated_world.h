// A world in simulated time, drawn from a seed: a Modbus line with faults, outages and unplugged adapters, a disk that fills up,
// fails, tears and forgets, a clock that somebody sets, and a program that is killed and started again. A measurement runs in it
// as it would anywhere; every value it got is known, and what it left behind is held against that.
#pragma once

#include <cmath>
#include <map>
#include <set>

#include "host/measurement/download.h"
#include "host/measurement/measurement.h"
#include "host/measurement/recording_writer.h"
#include "plugins/modbus/modbus_logger.h"
#include "record/recording_reader.h"
#include "tests/modbus/simulated_wire.h"
#include "tests/record/faulty_disk.h"

namespace simulated {

// The program ends here. Whoever swallows it meets it again at the next call.
struct Killed {};

struct Row {
    __int64 time;
    std::vector<double> values;
    std::vector<BYTE> flags;
    bool IsMark() const {
        return std::all_of(flags.begin(), flags.end(), [](BYTE flag) { return flag == RF_MISSING; });
    }
    bool operator==(const Row& other) const {
        return time == other.time && flags == other.flags &&
               std::equal(values.begin(), values.end(), other.values.begin(), other.values.end(),
                          [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); });
    }
};

class World : public IMeasurementClock, private IRecordingStore, private RecordingWriter::Listener {
public:
    struct Span {
        double from, to;  // seconds since the beginning
        bool Has(double at) const { return at >= from && at < to; }
    };
    struct Plan {
        Faults faults;
        double seconds = 86'400, interval = 10;
        std::vector<Span> silent, unplugged, full;     // the logger is off, the adapter is away, the disk is full
        std::vector<std::pair<double, double>> steps;  // when somebody sets the clock, and by how much
        std::vector<double> kills;                     // when the program is killed
        double powerCuts = 0;                          // chance that it is the power that goes
        double failedWrites = 0;                       // chance of each
        DWORD timeout = 1000;
        std::vector<DWORD> every;  // with which readings each of the three channels is read; none: with all
    };

    World(Plan plan, unsigned seed) : m_plan(std::move(plan)), m_random(seed) {
        for (const int first : {100, 200, 300}) {
            modbus::Channel channel;
            channel.first = static_cast<WORD>(first);
            channel.type = modbus::ValueType::Uint16;
            channel.key = channel.name = std::to_string(first);
            m_description.channels.push_back(channel);
            m_facts.SetValue(("Channels." + channel.key + ".sName").c_str(), channel.name.c_str());
        }
        m_description.slaves[0].address = 7;
        m_disk->onCall = [this] { Call(); };
    }

    // Everything, from the beginning of the time to its end. What is wrong comes back as sentences.
    std::vector<std::string> Run() {
        while (Seconds() < m_plan.seconds) {
            const bool killed = Live();
            Check();
            if (!killed) break;
            Pass(3 + Draw(60));  // until somebody starts it again
        }
        return std::move(m_wrong);
    }

    size_t RowsKept() const { return m_kept; }
    unsigned __int64 CellsGood() const { return m_cells; }
    const faulty::Contents& Disk() const { return *m_disk; }

    __int64 Steady() override {
        Call();
        return std::chrono::duration_cast<std::chrono::microseconds>(m_now.time_since_epoch()).count();
    }
    __int64 Calendar() override { return Steady() + kBegun + Offset(); }

private:
    static constexpr __int64 kBegun = 1'795'000'000'000'000;

    // The line with the world's outages.
    class Line : public Wire {
    public:
        Line(World& world, unsigned seed) : Wire(world.m_plan.faults, seed, world.m_now), m_world(world) {}
        void Open(const char* port, const CLineSettings& line, TimePoint until) override {
            m_world.Call();
            if (m_world.In(m_world.m_plan.unplugged)) OrvikThrowCommException(CCommException::DeviceNotOpen, nullptr);
            Wire::Open(port, line, until);
        }
        void Send(std::span<const BYTE> bytes, TimePoint until) override {
            Check();
            if (!m_world.In(m_world.m_plan.silent)) Wire::Send(bytes, until);
        }
        bool Receive(std::vector<BYTE>& received, TimePoint until) override {
            Check();
            const bool came = Wire::Receive(received, until);
            m_world.m_now = Wire::Now();
            Check();
            return came;
        }
        TimePoint Now() override { return Wire::Now(); }
        bool IsShared() const override { return true; }

    private:
        void Check() {
            m_world.Call();
            if (m_world.In(m_world.m_plan.unplugged)) OrvikThrowCommException(CCommException::HardwareError, nullptr);
        }
        World& m_world;
    };

    // The logger as the measurement sees it, and a witness of what it gave.
    class Witness : public ILogger {
    public:
        Witness(World& world, modbus::Logger& logger, Line& line) : m_world(world), m_logger(logger), m_line(line) {}
        COrvikConnection& Connection() override { return m_logger.Connection(); }
        CSerialOrvik& Port() override { return m_logger.Port(); }
        void Connect(const char* port, DWORD timeout) override { m_logger.Connect(port, timeout); }
        void ReadSample(CDoubleArray& values) override {
            const TimePoint begun = m_line.Now();
            const auto look = [&] {
                for (INT_PTR i = 0; i < values.GetSize(); ++i) {
                    const double value = values.GetAt(i);
                    if (std::isnan(value)) continue;
                    ++m_world.m_cells;
                    if (!m_line.IsTrue(static_cast<WORD>(value), static_cast<WORD>(100 * (i + 1)), begun))
                        m_world.Wrong("the value " + std::to_string(value) + " of channel " + std::to_string(i) +
                                      " is another's");
                }
            };
            try {
                m_logger.ReadSample(values);
            } catch (...) {
                look();
                throw;
            }
            look();
        }
        void Disconnect() override { m_logger.Disconnect(); }
        void Watch(IReadingWatch* watch) override { m_logger.Watch(watch); }
        void Abort() override { m_logger.Abort(); }

    private:
        World& m_world;
        modbus::Logger& m_logger;
        Line& m_line;
    };

    // What the measurement handed over, and whether it was told that it is written.
    class Ledger : public IMeasurementSink {
    public:
        Ledger(World& world, RecordingWriter& writer) : m_world(world), m_writer(writer) {}
        Begin OnBegin(__int64 time) override { return m_writer.OnBegin(time); }
        void OnReading(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags) override {
            const Row row{time, values, flags};
            if (!row.IsMark()) m_world.Handed(row);
            m_writer.OnReading(time, values, flags);
            m_world.Written(m_writer.Waiting());
        }
        void OnGap(const CRecordedGap& gap) override { m_writer.OnGap(gap); }
        void OnEvent(const CRecordedEvent& event) override { m_writer.OnEvent(event); }

    private:
        World& m_world;
        RecordingWriter& m_writer;
    };

    double Seconds() const { return std::chrono::duration<double>(m_now - m_start).count(); }
    bool In(const std::vector<Span>& spans) const {
        return std::any_of(spans.begin(), spans.end(), [&](const Span& span) { return span.Has(Seconds()); });
    }
    __int64 Offset() const {
        double offset = 0;
        for (const auto& [when, by] : m_plan.steps) offset += when <= Seconds() ? by : 0;
        return static_cast<__int64>(offset * 1e6);
    }
    double Draw(double below) { return std::uniform_real_distribution<double>(0, below)(m_random); }
    void Pass(double seconds) { m_now += simulated::Seconds(seconds); }
    void Wrong(const std::string& what) {
        if (m_wrong.size() < 20) m_wrong.push_back(what + " at " + std::to_string(Seconds()) + " s");
    }

    // Something that takes part in the world is called: this is where the program may end, and the disk works on.
    void Call() {
        if (m_dead) throw Killed{};
        if (!m_alive) return;
        if (m_kill < m_plan.kills.size() && Seconds() >= m_plan.kills[m_kill]) {
            // Not at once, but some calls later: in the middle of anything.
            if (m_callsLeft == 0) m_callsLeft = 1 + static_cast<unsigned>(Draw(200));
            if (--m_callsLeft == 0) {
                ++m_kill;
                m_dead = true;
                throw Killed{};
            }
        }
        m_disk->room = In(m_plan.full) ? m_disk->bytes.size() + static_cast<size_t>(Draw(60)) : ~0ull;
        m_disk->failures = Draw(1) < m_plan.failedWrites ? 1 : 0;
        constexpr double kForceEvery = 2;
        if (Seconds() - m_forced >= kForceEvery) {
            m_disk->Force();
            m_forced = Seconds();
            m_forcedRows = m_written;
        }
    }

    // One life of the program; true if it was killed.
    bool Live() {
        m_alive = true;
        ++m_lives;
        m_slots = 0;
        Line* const line = new Line(*this, static_cast<unsigned>(m_random()));
        modbus::Logger logger(m_description, std::unique_ptr<ITransport>(line));
        Witness witness(*this, logger, *line);
        RecordingWriter::Plan record;
        record.path = "r.rec";
        record.append = true;
        record.interval = static_cast<__int64>(m_plan.interval * 1e6);
        RecordingWriter writer(m_facts, record, *this, *this);
        Ledger ledger(*this, writer);
        MeasurementPlan plan;
        plan.port = "line";
        plan.timeout = m_plan.timeout;
        plan.interval = record.interval;
        plan.steps = m_plan.every;
        plan.duration = static_cast<__int64>((m_plan.seconds - Seconds()) * 1e6);
        bool killed = false;
        try {
            Measurement measurement(witness, m_description.channels.size(), ledger, *this, plan);
            m_measurement = &measurement;
            while (!measurement.IsOver()) {
                measurement.Run();
                writer.Tick();
                Written(writer.Waiting());
                Follow();
                const double left = static_cast<double>(measurement.NextDue() - Steady()) / 1e6;
                const double pause = measurement.IsOver() ? 0 : std::clamp(left, 0.0, 1.0);
                line->Idle(pause + 1e-6);
                m_now = line->Now();
            }
            if (measurement.End() == Measurement::Ended::NeverConnected) {
                killed = true;  // started again, as a service is
            } else {
                const DWORD closed = writer.Close();
                Written(writer.Waiting());
                if (closed == ERROR_SUCCESS) m_slots = measurement.Slot();
                if (writer.Waiting() > 0 && !In(m_plan.full)) Wrong("rows wait although there is room");
            }
        } catch (const Killed&) {
            killed = true;
            if (Draw(1) < m_plan.powerCuts) {
                m_disk->LosePower(m_random);
                m_written = m_forcedRows;
                m_followed = false;
            }
        }
        m_measurement = nullptr;
        m_alive = m_dead = false;
        m_callsLeft = 0;
        return killed;
    }

    void Handed(const Row& row) { m_handed.push_back(row); }
    void Written(size_t waiting) { m_written = std::max(m_written, m_handed.size() - std::min(m_handed.size(), waiting)); }

    // A reader beside the program.
    void Follow() {
        if (!m_followed || Draw(1) > 0.05) return;
        const auto onCall = std::exchange(m_disk->onCall, {});
        if (m_follower == nullptr) {
            m_follower = std::make_unique<CRecordingReader>();
            if (m_follower->Open(std::make_unique<faulty::File>(m_disk)) != ERROR_SUCCESS) m_follower.reset();
        }
        if (m_follower != nullptr) {
            for (ERecordItem item; (item = m_follower->Next()) != RI_END;) {
                if (item == RI_DAMAGE && m_plan.powerCuts == 0) Wrong("a follower meets damage");
                if (item == RI_READING) m_seen.push_back(RowOf(*m_follower));
            }
        }
        m_disk->onCall = onCall;
    }

    static Row RowOf(const CRecordingReader& reader) {
        return {reader.Time(),
                {reader.Values(), reader.Values() + reader.ChannelCount()},
                {reader.Flags(), reader.Flags() + reader.ChannelCount()}};
    }

    // What the file holds, against what is known.
    void Check() {
        const auto onCall = std::exchange(m_disk->onCall, {});
        CRecordingReader reader;
        if (!m_made) {
            m_disk->onCall = onCall;
            return;
        }
        if (reader.Open(std::make_unique<faulty::File>(m_disk)) != ERROR_SUCCESS) {
            Wrong("the file does not open");
            m_disk->onCall = onCall;
            return;
        }
        std::vector<Row> rows;
        std::map<DWORD, CRecordedGap> gaps;
        unsigned __int64 damaged = 0;
        for (ERecordItem item; (item = reader.Next()) != RI_END;) {
            if (item == RI_READING) rows.push_back(RowOf(reader));
            if (item == RI_GAP) gaps[reader.Gap().number] = reader.Gap();
            if (item == RI_DAMAGE) damaged += reader.Damage().size;
        }
        if (damaged > 0 && m_plan.powerCuts == 0) Wrong("damage without a cause");
        // Each row is one that was handed over, in their order, and those that were promised are there.
        size_t at = 0;
        std::set<size_t> present;
        m_kept = 0;
        for (size_t i = 0; i < rows.size(); ++i) {
            if (i > 0 && rows[i].time <= rows[i - 1].time) Wrong("times do not increase");
            if (rows[i].IsMark()) continue;
            ++m_kept;
            while (at < m_handed.size() && !(m_handed[at] == rows[i])) ++at;
            if (at == m_handed.size()) {
                Wrong("a row was never handed over, or is doubled");
                break;
            }
            present.insert(at++);
        }
        for (size_t i = 0; i < m_handed.size() && i < m_written; ++i) {
            if (present.count(i) == 0 && m_excused.count(i) == 0) {
                Wrong("a row that was promised is lost");
                break;
            }
        }
        // What is not there now will never be.
        for (size_t i = 0; i < m_handed.size(); ++i) {
            if (present.count(i) == 0) m_excused.insert(i);
        }
        m_written = m_handed.size();
        // Every missing cell has its gap, and so has every hole.
        // A gap that goes on is told every minute: a program that is killed leaves the rest of it to be understood.
        const __int64 untold = m_lives > 1 || !m_plan.kills.empty() ? 60'000'000 : 0;
        const auto covered = [&](__int64 from, __int64 to, int channel) {
            return std::any_of(gaps.begin(), gaps.end(), [&](const auto& entry) {
                const CRecordedGap& gap = entry.second;
                const bool has = gap.channels.empty() || (channel >= 0 && std::find(gap.channels.begin(), gap.channels.end(),
                                                                                    channel) != gap.channels.end());
                return has && !gap.text.empty() && gap.from <= to && gap.until + (channel >= 0 ? untold : 0) >= from;
            });
        };
        const Row* last = nullptr;
        for (const Row& row : rows) {
            if (row.IsMark()) continue;
            const __int64 interval = static_cast<__int64>(m_plan.interval * 1e6);
            if (last != nullptr && row.time - last->time > 2 * interval + kSlack &&
                !covered(last->time - interval, row.time + interval, -1) && !m_lostByPower)
                Wrong("a hole of " + std::to_string((row.time - last->time) / 1'000'000) + " s without a cause");
            for (size_t i = 0; i < row.flags.size(); ++i) {
                if ((row.flags[i] != RF_GOOD) != std::isnan(row.values[i])) Wrong("flag and value differ");
                if (row.flags[i] == RF_MISSING && !covered(row.time, row.time, static_cast<int>(i)))
                    Wrong("a missing cell without a cause");
            }
            last = &row;
        }
        // Each reading whose time came is a row, or is counted.
        if (m_lives == 1 && m_slots > 0) {
            unsigned __int64 counted = m_kept;
            for (const auto& [number, gap] : gaps) counted += gap.channels.empty() ? gap.missed : 0;
            if (counted != m_slots)
                Wrong(std::to_string(m_slots) + " readings were due, " + std::to_string(counted) + " are told of");
        }
        // What the follower saw is what stands there.
        if (m_followed) {
            if (m_seen.size() > rows.size() || !std::equal(m_seen.begin(), m_seen.end(), rows.begin()))
                Wrong("a follower saw something else");
        } else {
            m_follower.reset();
            m_seen.clear();
            m_followed = true;
            m_lostByPower = true;
        }
        m_disk->onCall = onCall;
    }

    // IRecordingStore
    bool Exists(const std::string&) override { return m_made; }
    DWORD Create(const std::string&, CPropertyDB& facts, CRecorder& recorder) override {
        // One step, as on a real disk.
        const auto onCall = std::exchange(m_disk->onCall, {});
        const bool full = In(m_plan.full);
        const DWORD error =
            full ? static_cast<DWORD>(ERROR_DISK_FULL) : recorder.Create(std::make_unique<faulty::File>(m_disk), facts);
        m_made = error == ERROR_SUCCESS;
        m_disk->Force();
        m_disk->onCall = onCall;
        if (!m_made) throw Killed{};  // the download ends with a sentence, and is started again
        return error;
    }
    DWORD Resume(const std::string&, CRecorder& recorder) override {
        const DWORD error = recorder.Resume(std::make_unique<faulty::File>(m_disk));
        if (error != ERROR_SUCCESS) throw Killed{};  // likewise
        return error;
    }

    // RecordingWriter::Listener
    void OnWriting(const std::string&, DWORD) override {}
    void OnDropped(CRecordedGap gap) override { m_measurement->Dropped(std::move(gap)); }
    void OnFile(const std::string&) override {}

    static constexpr __int64 kSlack = 20'000'000;  // us; a row has the time of its first answer, which may be long in coming

    const Plan m_plan;
    std::mt19937 m_random;
    const TimePoint m_start{std::chrono::hours(1)};
    TimePoint m_now = m_start;
    modbus::Description m_description;
    CPropertyDB m_facts;
    std::shared_ptr<faulty::Contents> m_disk = std::make_shared<faulty::Contents>();
    bool m_made = false, m_alive = false, m_dead = false, m_followed = true, m_lostByPower = false;
    unsigned m_callsLeft = 0, m_lives = 0;
    unsigned __int64 m_slots = 0;  // of a life that came to its end
    size_t m_kill = 0;
    double m_forced = 0;
    Measurement* m_measurement = nullptr;

    std::vector<Row> m_handed;   // in all lives
    size_t m_written = 0;        // of them, promised to be kept
    size_t m_forcedRows = 0;     // of them, when the disk was last forced
    std::set<size_t> m_excused;  // that a life or the power took with it
    std::unique_ptr<CRecordingReader> m_follower;
    std::vector<Row> m_seen;
    size_t m_kept = 0;
    unsigned __int64 m_cells = 0;
    std::vector<std::string> m_wrong;
};

}  // namespace simulated
