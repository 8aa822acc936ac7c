-- More rows than a listing reads at once, on SQLite and on PostgreSQL. The order of the names differs between databases,
-- and the names differ by letter case, accents and blanks alone.
INSERT INTO security_user (user_name)
    WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 2499)
    SELECT CASE i % 5 WHEN 0 THEN 'm' WHEN 1 THEN 'M' WHEN 2 THEN 'ä' WHEN 3 THEN ' m' ELSE '-m' END || (i / 10) ||
        CASE i / 5 % 2 WHEN 0 THEN '' ELSE ' ' END FROM n;
INSERT INTO security_attribute SELECT user_name, 'a', 'first of ' || user_name FROM security_user;
INSERT INTO security_attribute SELECT user_name, 'A', '' FROM security_user;
INSERT INTO security_permission
    WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 2499)
    SELECT 5000 + 3 * i, CASE i % 2 WHEN 0 THEN 'user' ELSE 'group' END, 'g' || (i % 7), 'p', 4294967295 - i,
        CASE i % 3 WHEN 0 THEN NULL ELSE 'ö' || i END, i % 2 FROM n;
