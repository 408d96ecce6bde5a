#include "plugins/postgresql/postgresql_layout.h"

#include <charconv>
#include <string_view>

#include "plugins/support/sink_tables.h"
#include "record/sink.h"

namespace postgresql {
namespace {
constexpr int kLayout = 1;
constexpr char kLock[] = "select pg_advisory_xact_lock(7239471832750193)";  // any number that nobody else takes

// In the schema, which is the only one on the search path.
constexpr char kTables[] = R"(
create table layout (version integer not null);
insert into layout values (1);
create table session (
    session integer generated always as identity primary key,
    station text not null, logger text not null, began timestamptz not null,
    device text not null, family text not null, port text not null,
    unique (station, logger, began));
create table channel (
    session integer not null references session on delete cascade,
    place smallint not null, key text not null, name text not null, unit text not null,
    primary key (session, place));
create table reading (
    session integer not null, channel smallint not null, time timestamptz not null, value double precision,
    primary key (session, channel, time));
create table gap (
    session integer not null references session on delete cascade,
    number bigint not null, from_time timestamptz not null, until_time timestamptz not null,
    missed bigint not null, attempts bigint not null, cause integer not null, text text not null, channels smallint[] not null,
    primary key (session, number));
create table event (
    session integer not null references session on delete cascade,
    time timestamptz not null, kind integer not null, amount bigint not null, text text not null);
-- No index takes texts of any length.
create unique index event_key on event (session, time, kind, amount, hashtextextended(text, 0));
create table comment (
    session integer not null references session on delete cascade,
    number integer not null, time timestamptz not null, channel text not null, value double precision, text text not null,
    primary key (session, number));
create view readings as
    select r.time, s.station, s.logger, c.name as channel, c.unit, r.value,
           ltrim(case s.station when '' then '' else s.station || '/' end || s.logger || ' ') || c.name as metric
    from reading r join channel c on c.session = r.session and c.place = r.channel join session s on s.session = r.session;
create view gaps as
    select g.from_time, g.until_time, s.station, s.logger, g.missed, g.attempts, g.cause, g.text,
           (select string_agg(c.name, ', ' order by c.place) from channel c where c.session = g.session and c.place = any (g.channels)) as channels
    from gap g join session s using (session);
create view comments as
    select k.time, s.station, s.logger, c.name as channel, k.value, k.text
    from comment k join session s using (session) left join channel c on c.session = k.session and c.key = k.channel;
)";

std::string Events() {
    return std::string("create view events as select e.time, s.station, s.logger, e.kind, ") + orvik::tables::kEventWord +
           " as event, e.amount, e.text from event e join session s using (session)";
}

int NumberIn(const PGresult* result) {
    const std::string_view text = PQgetvalue(result, 0, 0);
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}
}  // namespace

void PrepareLayout(Connection& connection, const std::string& schema) {
    const auto has = [&](const char* question, const std::vector<std::string>& parameters) {
        return PQntuples(connection.Run(question, parameters).get()) > 0;
    };
    const std::string name = connection.Name(schema);
    connection.Run("begin");
    connection.Run(kLock);
    if (!has("select 1 from pg_namespace where nspname = $1", {schema})) connection.Run("create schema " + name);
    connection.Run("set search_path to " + name);
    const auto may = [&](const char* right) {
        if (!has("select 1 where has_schema_privilege($1, $2)", {schema, right}))
            throw CSinkFailure("sSchema: the user has not the right (" + std::string(right) + ") on \"" + schema + "\"");
    };
    may("usage");
    if (!has("select 1 from pg_tables where schemaname = $1 and tablename = 'layout'", {schema})) {
        may("create");
        connection.Run(kTables + Events());
        const Result extension = connection.Run("select extnamespace::regnamespace::text from pg_extension where extname = 'timescaledb'");
        if (PQntuples(extension.get()) > 0)
            connection.Run(std::string("select ") + PQgetvalue(extension.get(), 0, 0) + ".create_hypertable('reading', 'time')");
    }
    const Result version = connection.Run("select max(version) from layout");
    if (NumberIn(version.get()) != kLayout)
        throw CSinkFailure("sSchema: \"" + schema + "\" has tables of layout " + PQgetvalue(version.get(), 0, 0) + ", which a later version made");
    connection.Run("commit");
}

}  // namespace postgresql
