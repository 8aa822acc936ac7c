-- 3,072 users with names, groups and departments that break a careless format. The view shows the columns of a report.
CREATE TABLE piece (number INTEGER PRIMARY KEY, text TEXT);
INSERT INTO piece (text) VALUES
    ('<'), ('>'), ('&'), ('"'), (''''), (','), ('='), ('+'), ('-'), ('@'), (char(9)), (char(13)), (char(10)),
    (char(27) || '[31m'), ('é'), (char(0x202e)), ('\'), ('|'), ('</td>'), ('<script>'), ('&lt;'), ('-->'), (' '), ('ש'),
    ('a'), (']]>'), ('%values'), ('javascript:'), ('</title>'), (char(127)), (char(0x061c)), ('＝');

DELETE FROM security_user;
INSERT OR IGNORE INTO security_user
    SELECT a.text || b.text || c.text, d.text || b.text || a.text
    FROM piece a, piece b, piece c, piece d
    WHERE c.number <= 3 AND d.number = 1 + (a.number + 5 * b.number + c.number) % 32;
INSERT INTO security_permission (position, grantee_type, grantee, permission_name, permission_value, resource)
    SELECT 10000 + row_number() OVER (), 'user', user_name, 'archive.' || field, 1,
        iif(field = 'department', group_name || user_name, NULL)
    FROM security_user, (SELECT value AS field
        FROM json_each('["department", "site", "kind", "confidentiality", "author", "region"]'));

CREATE VIEW shown (user_name, group_name, outcome, department, site, kind, confidentiality, author, region, filter) AS
    SELECT user_name, group_name, 'restricted', '1: ''' || resource || '''', 'all', 'all', 'all', 'all', 'all',
        'department = (''' || resource || ''')'
    FROM security_user JOIN security_permission ON grantee = user_name AND permission_name = 'archive.department'
    ORDER BY user_name;
