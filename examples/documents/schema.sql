-- The tables of a security database. Runs unchanged on SQLite and on PostgreSQL.
--
-- Deleting a user deletes the user's attributes: always on PostgreSQL; on SQLite only if the connection that deletes has
-- run "PRAGMA foreign_keys = ON" before. Grants name users and groups without a key, so whoever deletes a user deletes
-- the grants too. docs/operations.md has the statements for everyday work, and for databases that were made before.

CREATE TABLE security_user (
    user_name   VARCHAR(255) NOT NULL PRIMARY KEY,
    group_name  VARCHAR(255) NOT NULL DEFAULT '');
CREATE TABLE security_attribute (
    user_name        VARCHAR(255) NOT NULL REFERENCES security_user ON DELETE CASCADE,
    attribute_name   VARCHAR(255) NOT NULL,
    attribute_value  TEXT NOT NULL,
    PRIMARY KEY (user_name, attribute_name));
CREATE TABLE security_permission (
    position          INTEGER NOT NULL PRIMARY KEY,   -- order in a permission list
    grantee_type      VARCHAR(5) NOT NULL CHECK (grantee_type IN ('user', 'group')),
    grantee           VARCHAR(255) NOT NULL,
    permission_name   VARCHAR(255) NOT NULL,
    permission_value  BIGINT NOT NULL,                -- 0 to 4294967295, a set of bits
    resource          TEXT,                           -- NULL: no resource, the permission is held outright
    is_conditional    INTEGER NOT NULL DEFAULT 0);
CREATE INDEX security_permission_grantee ON security_permission (grantee_type, grantee, position);
