-- Two roles for the store in PostgreSQL, one that can only load and one that can only read. For psql, run by one
-- who may make roles, once the store exists, and again after usbinfo-store migrate has changed its schema:
--   usbinfo-store migrate --db postgresql:///usbinfo
--   sudo -u postgres psql --dbname usbinfo < roles.sql

\set ON_ERROR_STOP on
SELECT format('CREATE ROLE %I LOGIN', name)
FROM unnest(ARRAY['usbinfo_load', 'usbinfo_read']) AS name
WHERE NOT EXISTS (SELECT FROM pg_roles WHERE rolname = name)
\gexec

BEGIN;
REVOKE ALL ON ALL TABLES IN SCHEMA public FROM PUBLIC, usbinfo_load, usbinfo_read;

-- Reads all, and writes nothing.
GRANT SELECT ON ALL TABLES IN SCHEMA public TO usbinfo_read;

-- Reads what a new report is compared with, and adds rows. It deletes nothing and changes no report: what it may update
-- is until when an item was there, which machine and mask a host has, what a node said last, and how often a
-- text was refused.
GRANT SELECT ON meta, host, state, report, item TO usbinfo_load;
GRANT INSERT ON host, state, report, item, comparison, difference, late, refused, node TO usbinfo_load;
GRANT UPDATE (machine, mask) ON host TO usbinfo_load;
GRANT UPDATE (until) ON item TO usbinfo_load;
-- What finds a row that is there already, and what is updated then. The texts themselves it cannot read again.
GRANT SELECT (host_id, collected, hash) ON late TO usbinfo_load;
GRANT SELECT (hash, last_time, times, host, source, reason), UPDATE (last_time, times, host, source, reason)
  ON refused TO usbinfo_load;
GRANT SELECT (name, host_id, tried, reason), UPDATE (host_id, tried, reason) ON node TO usbinfo_load;
COMMIT;
