-- Random changes of the sample's grants, attributes and users; the table "seed" holds the number that they come from.
CREATE TABLE draw AS
    WITH RECURSIVE states(n, state) AS (
        SELECT 0, number FROM seed
        UNION ALL SELECT n + 1, (state * 1103515245 + 12345) % 2147483648 FROM states WHERE n < 10)
    SELECT n, state / 65536 AS value FROM states;
CREATE TABLE known AS SELECT user_name FROM security_user ORDER BY user_name; -- 11 of them
CREATE TABLE choice (name TEXT, resource TEXT);                               -- 28 of them
INSERT INTO choice VALUES
    ('department', 'Finance'), ('department', 'Legal'), ('department', 'Crewing'), ('department', 'Fleet'),
    ('department', 'nowhere'), ('department', NULL), ('department', NULL), ('site', 'bergen'), ('site', 'gdansk'),
    ('site', 'depot_north'), ('site', 'depot_south'), ('site', NULL), ('kind', 'CON'), ('kind', 'INV'), ('kind', 'LET'),
    ('kind', 'unknown'), ('kind', NULL), ('confidentiality', 'secret'), ('confidentiality', 'internal'),
    ('confidentiality', 'public'), ('confidentiality', NULL), ('author', '%my%'), ('author', 'e3'), ('author', 'e4'),
    ('author', NULL), ('region', '%my%'), ('region', 'baltic'), ('region', NULL);

INSERT INTO security_permission
    SELECT 5000 + n, 'user', user_name, 'archive.' || name, 1, resource, 0
    FROM draw JOIN choice ON choice.rowid = 1 + value % 28 JOIN known ON known.rowid = 1 + value / 28 % 11
    WHERE n BETWEEN 1 AND 6;
DELETE FROM security_permission WHERE position % 13 = (SELECT value % 13 FROM draw WHERE n = 7);
UPDATE security_attribute SET attribute_value = 'north sea'
    WHERE attribute_name = 'region' AND (SELECT value % 2 FROM draw WHERE n = 8);
DELETE FROM security_user
    WHERE user_name = (SELECT user_name FROM known JOIN draw ON known.rowid = 1 + value % 11 WHERE n = 9)
        AND (SELECT value % 2 FROM draw WHERE n = 10);
