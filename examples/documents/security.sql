-- The security database of the document archive: users, their attributes, and their permissions.
-- Runs unchanged on SQLite and on PostgreSQL. The tables are those of schema.sql.

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

INSERT INTO security_user (user_name, group_name) VALUES
    ('vera', 'board'),             -- reads everything
    ('hugo', 'department_staff'),  -- one department
    ('mira', 'department_staff'),  -- two departments
    ('omar', 'freelancers'),       -- his own documents
    ('sara', 'site_clerks'),       -- sites, granted by identifier
    ('ines', 'records_clerks'),    -- kinds, granted by code
    ('kofi', 'case_workers'),      -- one confidentiality, and published documents
    ('lena', 'agents'),            -- her own region, and documents for all regions
    ('joan', 'agents'),            -- has no region attribute
    ('nils', 'auditors'),          -- one department, and in it two kinds
    ('tom', 'department_staff');   -- has no department yet

INSERT INTO security_attribute (user_name, attribute_name, attribute_value) VALUES
    ('omar', 'employee_id', 'e17'),
    ('lena', 'employee_id', 'e23'),
    ('lena', 'region', 'baltic');

-- Each group holds outright the permissions of the fields that do not restrict it ...
INSERT INTO security_permission (position, grantee_type, grantee, permission_name, permission_value) VALUES
    (101, 'group', 'board', 'archive.department', 1),
    (102, 'group', 'board', 'archive.site', 1),
    (103, 'group', 'board', 'archive.kind', 1),
    (104, 'group', 'board', 'archive.confidentiality', 1),
    (105, 'group', 'board', 'archive.author', 1),
    (106, 'group', 'board', 'archive.region', 1),
    (202, 'group', 'department_staff', 'archive.site', 1),
    (203, 'group', 'department_staff', 'archive.kind', 1),
    (204, 'group', 'department_staff', 'archive.confidentiality', 1),
    (205, 'group', 'department_staff', 'archive.author', 1),
    (206, 'group', 'department_staff', 'archive.region', 1),
    (301, 'group', 'site_clerks', 'archive.department', 1),
    (303, 'group', 'site_clerks', 'archive.kind', 1),
    (304, 'group', 'site_clerks', 'archive.confidentiality', 1),
    (305, 'group', 'site_clerks', 'archive.author', 1),
    (306, 'group', 'site_clerks', 'archive.region', 1),
    (401, 'group', 'records_clerks', 'archive.department', 1),
    (402, 'group', 'records_clerks', 'archive.site', 1),
    (404, 'group', 'records_clerks', 'archive.confidentiality', 1),
    (405, 'group', 'records_clerks', 'archive.author', 1),
    (406, 'group', 'records_clerks', 'archive.region', 1),
    (501, 'group', 'case_workers', 'archive.department', 1),
    (502, 'group', 'case_workers', 'archive.site', 1),
    (503, 'group', 'case_workers', 'archive.kind', 1),
    (505, 'group', 'case_workers', 'archive.author', 1),
    (506, 'group', 'case_workers', 'archive.region', 1),
    (601, 'group', 'freelancers', 'archive.department', 1),
    (602, 'group', 'freelancers', 'archive.site', 1),
    (603, 'group', 'freelancers', 'archive.kind', 1),
    (604, 'group', 'freelancers', 'archive.confidentiality', 1),
    (606, 'group', 'freelancers', 'archive.region', 1),
    (701, 'group', 'agents', 'archive.department', 1),
    (702, 'group', 'agents', 'archive.site', 1),
    (703, 'group', 'agents', 'archive.kind', 1),
    (704, 'group', 'agents', 'archive.confidentiality', 1),
    (705, 'group', 'agents', 'archive.author', 1),
    (802, 'group', 'auditors', 'archive.site', 1),
    (804, 'group', 'auditors', 'archive.confidentiality', 1),
    (805, 'group', 'auditors', 'archive.author', 1),
    (806, 'group', 'auditors', 'archive.region', 1);

-- ... and resources for the other fields. The value 3 is "read" and another bit; the archive requires "read".
INSERT INTO security_permission (position, grantee_type, grantee, permission_name, permission_value, resource) VALUES
    (1001, 'user', 'hugo', 'archive.department', 1, 'Legal'),
    (1002, 'user', 'mira', 'archive.department', 3, 'Finance'),
    (1003, 'user', 'mira', 'archive.department', 1, 'Crewing'),
    (1004, 'user', 'sara', 'archive.site', 1, 'bergen'),
    (1005, 'user', 'sara', 'archive.site', 1, 'depot_north'),
    (1006, 'user', 'ines', 'archive.kind', 1, 'INV'),
    (1007, 'user', 'ines', 'archive.kind', 1, 'CON'),
    (1008, 'user', 'kofi', 'archive.confidentiality', 1, 'internal'),
    (1009, 'group', 'freelancers', 'archive.author', 1, '%my%'),
    (1010, 'group', 'agents', 'archive.region', 1, '%my%'),
    (1011, 'group', 'auditors', 'archive.kind', 1, 'CON'),
    (1012, 'group', 'auditors', 'archive.kind', 1, 'INV'),
    (1013, 'user', 'nils', 'archive.department', 1, 'Finance');
