// The SQL of the tables and views. It is the same for SQLite and PostgreSQL, but for the words in braces.
#pragma once

namespace store {

inline constexpr const char* kSchemaText =
    R"sql(-- Times are seconds since 1970-01-01 00:00:00 UTC. What is not known is NULL. Each text that a device sends is cut to
-- 512 bytes outside of "content", which holds it whole.

-- The version of these tables, in one row.
CREATE TABLE meta (
  schema_version INTEGER NOT NULL
);
INSERT INTO meta (schema_version) VALUES ({version});

-- A machine. "machine" is the hash of its id; "mask" is 'none', 'random' or 'key:' and the fingerprint of the key
-- that its serial numbers are masked with.
CREATE TABLE host (
  id {identity},
  name TEXT NOT NULL UNIQUE,
  machine TEXT,
  mask TEXT
);

-- A machine as it is named to collect it, and the host that it was last time. "reason" is why no report could be had
-- at the time "tried"; NULL when there was one.
CREATE TABLE node (
  name TEXT PRIMARY KEY,
  host_id BIGINT REFERENCES host (id) ON DELETE CASCADE,
  tried BIGINT NOT NULL,
  reason TEXT
);

-- What a report says, once for all reports in a row that say the same. "items" lists the numbers of its items in their
-- order, such as '1-17,25,19-24'. "text_hash" is the hash of the text that the first of these reports came as, but for
-- its time; NULL where a report with that text has to be read as a whole. An upgrade that keeps more of each report
-- sets it to NULL.
CREATE TABLE state (
  host_id BIGINT NOT NULL REFERENCES host (id) ON DELETE CASCADE,
  number BIGINT NOT NULL,
  hash TEXT NOT NULL,
  text_hash TEXT,
  system_name TEXT NOT NULL,
  origin TEXT,
  says_collected INTEGER NOT NULL,
  has_kernel INTEGER NOT NULL,
  items TEXT NOT NULL,
  controllers INTEGER NOT NULL,
  hubs INTEGER NOT NULL,
  ports INTEGER NOT NULL,
  devices INTEGER NOT NULL,
  findings INTEGER NOT NULL,
  PRIMARY KEY (host_id, number)
);
CREATE INDEX state_text ON state (text_hash) WHERE text_hash IS NOT NULL;

-- A report, by the time when it was collected.
CREATE TABLE report (
  host_id BIGINT NOT NULL REFERENCES host (id) ON DELETE CASCADE,
  collected BIGINT NOT NULL,
  loaded BIGINT NOT NULL,
  state BIGINT NOT NULL,
  PRIMARY KEY (host_id, collected),
  FOREIGN KEY (host_id, state) REFERENCES state (host_id, number)
){by key};

-- One instance of a report, or what the kernel knows of one: "content" is its JSON. It was in all reports from "since"
-- on, and in none from "until" on; that is NULL while the last report has it. Sections 0 to 5 are the classes
-- KALDO_USBController, Hub, Port, Device, PortOnHub and Connection, 6 and 7 the kernel's devices and ports.
CREATE TABLE item (
  host_id BIGINT NOT NULL REFERENCES host (id) ON DELETE CASCADE,
  number BIGINT NOT NULL,
  since BIGINT NOT NULL,
  until BIGINT,
  section INTEGER NOT NULL,
  hash TEXT NOT NULL,
  content TEXT NOT NULL,
  identifier TEXT,
  link TEXT,
  place TEXT,
  vendor_id TEXT,
  product_id TEXT,
  manufacturer TEXT,
  product TEXT,
  serial TEXT,
  words TEXT,
  kinds TEXT,
  revision TEXT,
  drivers TEXT,
  peer TEXT,
  connect TEXT,
  state TEXT,
  speed DOUBLE PRECISION,
  ports INTEGER,
  is_root INTEGER,
  PRIMARY KEY (host_id, number)
);
CREATE INDEX item_now ON item (host_id) WHERE until IS NULL;
CREATE INDEX item_serial ON item (serial) WHERE serial IS NOT NULL;
CREATE INDEX item_model ON item (vendor_id, product_id) WHERE vendor_id IS NOT NULL;
CREATE INDEX item_kinds ON item (kinds) WHERE kinds IS NOT NULL;
CREATE INDEX item_words ON item (words) WHERE words IS NOT NULL;

-- A report that differs from the one before it, which was collected at "previous"; or that cannot be compared with
-- it, and then "is_compared" is 0. "remarks" are lines for people. "old" and "new" are those members of usbinfo.diff/2.
CREATE TABLE comparison (
  host_id BIGINT NOT NULL REFERENCES host (id) ON DELETE CASCADE,
  collected BIGINT NOT NULL,
  previous BIGINT NOT NULL,
  is_compared INTEGER NOT NULL,
  remarks TEXT,
  old TEXT NOT NULL,
  new TEXT NOT NULL,
  PRIMARY KEY (host_id, collected)
);
CREATE INDEX comparison_collected ON comparison (collected);

-- What differs between these reports, a row for each item, numbered in the order in which usbinfo diff prints them.
-- "kind" is 'removed', 'moved', 'changed' or 'added'. "place", "description" and the lines of "properties" are texts as
-- usbinfo diff prints them, escaped and whole; "content" is the element of usbinfo.diff/2.
CREATE TABLE difference (
  host_id BIGINT NOT NULL,
  collected BIGINT NOT NULL,
  number INTEGER NOT NULL,
  kind TEXT NOT NULL,
  class TEXT NOT NULL,
  place TEXT NOT NULL,
  place_before TEXT,
  description TEXT NOT NULL,
  properties TEXT,
  content TEXT NOT NULL,
  PRIMARY KEY (host_id, collected, number),
  FOREIGN KEY (host_id, collected) REFERENCES comparison (host_id, collected) ON DELETE CASCADE
);

-- Reports that came after a later one of the same machine. They are kept and counted, and change nothing.
CREATE TABLE late (
  host_id BIGINT NOT NULL REFERENCES host (id) ON DELETE CASCADE,
  collected BIGINT NOT NULL,
  hash TEXT NOT NULL,
  loaded BIGINT NOT NULL,
  document TEXT NOT NULL,
  PRIMARY KEY (host_id, collected, hash)
);

-- Texts that are no reports, or reports that could not be taken: "head" is how they begin.
CREATE TABLE refused (
  hash TEXT PRIMARY KEY,
  first_time BIGINT NOT NULL,
  last_time BIGINT NOT NULL,
  times BIGINT NOT NULL,
  host TEXT,
  source TEXT NOT NULL,
  reason TEXT NOT NULL,
  head TEXT NOT NULL
);

-- The views whose names end in _history hold all that was ever reported; at a time T, those with
-- since <= T AND (until IS NULL OR until > T). The others hold what the last report of each machine has.
CREATE VIEW controller_history AS
  SELECT host.name AS host, identifier, product AS description, since, until
  FROM item JOIN host ON host.id = item.host_id WHERE section = 0;
CREATE VIEW hub_history AS
  SELECT host.name AS host, identifier, place, vendor_id, product_id, manufacturer, product, serial, speed, revision,
    drivers, ports, is_root, since, until
  FROM item JOIN host ON host.id = item.host_id WHERE section = 1;
CREATE VIEW port_history AS
  SELECT host.name AS host, identifier, place, link AS hub, speed, state, connect, peer, since, until
  FROM item JOIN host ON host.id = item.host_id WHERE section = 2;
CREATE VIEW device_history AS
  SELECT host.name AS host, identifier, place, kinds, vendor_id, product_id, manufacturer, product, serial, speed,
    revision, drivers, since, until
  FROM item JOIN host ON host.id = item.host_id WHERE section = 3;
CREATE VIEW connection_history AS
  SELECT host.name AS host, link AS port, identifier AS device, since, until
  FROM item JOIN host ON host.id = item.host_id WHERE section = 5;

CREATE VIEW controller AS
  SELECT host, identifier, description, since FROM controller_history WHERE until IS NULL;
CREATE VIEW hub AS
  SELECT host, identifier, place, vendor_id, product_id, manufacturer, product, serial, speed, revision, drivers, ports,
    is_root, since
  FROM hub_history WHERE until IS NULL;
CREATE VIEW port AS
  SELECT host, identifier, place, hub, speed, state, connect, peer, since FROM port_history WHERE until IS NULL;
CREATE VIEW device AS
  SELECT host, identifier, place, kinds, vendor_id, product_id, manufacturer, product, serial, speed, revision, drivers,
    since
  FROM device_history WHERE until IS NULL;
CREATE VIEW connection AS
  SELECT host, port, device, since FROM connection_history WHERE until IS NULL;
-- What changed between reports that follow each other: all that ever did, and what the last report of each machine
-- changed. What changed from the time A to the time B has collected > A AND collected <= B.
CREATE VIEW change_history AS
  SELECT host.name AS host, previous, comparison.collected, difference.number, kind, class, place, place_before,
    description, properties, content
  FROM difference JOIN comparison ON comparison.host_id = difference.host_id
      AND comparison.collected = difference.collected
    JOIN host ON host.id = difference.host_id;
CREATE VIEW change AS
  SELECT host.name AS host, previous, comparison.collected, difference.number, kind, class, place, place_before,
    description, properties, content
  FROM difference JOIN comparison ON comparison.host_id = difference.host_id
      AND comparison.collected = difference.collected
    JOIN host ON host.id = difference.host_id
  WHERE comparison.collected = (SELECT MAX(report.collected) FROM report WHERE report.host_id = comparison.host_id);
)sql";

}  // namespace store
