-- For logins.txt and checks.txt: what differs from a user, a group or a permission by little must count for nothing.
INSERT INTO security_user VALUES
    ('', ''), ('o''bré', ''), ('under_score', ''), ('zero', 'Board'), ('both', 'both'), ('checker', ''),
    ('twice', 'a%'), (' x', ''), ('%', '');
INSERT INTO security_permission VALUES
    (1, 'group', '', 'archive.kind', 1, 'no group', 0),
    (2, 'user', 'o''bré', 'archive.kind', 4294967295, '', 1),
    (3, 'group', 'board', 'archive.kind', 1, 'x', 0),
    (4, 'user', 'Mira', 'archive.department', 1, 'upper case', 0),
    (5, 'user', 'mira ', 'archive.department', 1, 'blank', 0),
    (6, 'user', 'under%', 'archive.kind', 1, 'wildcard', 0),
    (7, 'user', 'underxscore', 'archive.kind', 1, 'wildcard', 0),
    (8, 'user', 'ghost', 'archive.kind', 1, 'of nobody', 0),
    (9, 'user', 'zero', 'archive.kind', 0, 'nothing', 0),
    (10, 'user', 'zero', 'archive.kind', 6, 'two bits', 0),
    (11, 'group', 'both', 'archive.kind', 1, 'first', 0),
    (12, 'user', 'both', 'archive.kind', 1, 'second', 0),
    (13, 'group', 'both', 'archive.kind', 1, 'second', 0),
    (14, 'user', 'board', 'archive.kind', 1, 'a user called like a group', 0),
    (15, 'group', 'aa', 'archive.kind', 1, 'of a group that a pattern would match', 0),
    (21, 'user', 'checker', 'p', 1, NULL, 0),
    (22, 'user', 'checker', 'p', 3, NULL, 0),
    (23, 'user', 'checker', 'q', 1, 'default', -1),
    (24, 'user', 'checker', 'r', 2, 'listed', 0),
    (25, 'user', 'checker', 'r', 3, 'default', 0),
    (26, 'user', 'checker', 's', 1, '', 0),
    (27, 'user', 'checker', 'c', 1, NULL, 2);
