-- Names and texts that somebody may have made to do harm. The group "g<ESC>[2J'"" holds what department_staff holds.
INSERT INTO security_user (user_name, group_name) VALUES
    ('quote''"; DROP TABLE security_user; --', 'department_staff'),
    (char(10) || 'line', 'g' || char(27) || '[2J''"'),
    (CAST(x'ff41' AS TEXT), 'department_staff'),
    (hex(zeroblob(524288)), 'department_staff');
INSERT INTO security_permission
    SELECT position + 5000, 'group', 'g' || char(27) || '[2J''"', permission_name, permission_value, resource, is_conditional
    FROM security_permission WHERE grantee = 'department_staff';
INSERT INTO security_permission (position, grantee_type, grantee, permission_name, permission_value, resource) VALUES
    (9001, 'user', 'quote''"; DROP TABLE security_user; --', 'archive.department', 1, 'a''b"c\d; --'),
    (9002, 'group', 'g' || char(27) || '[2J''"', 'archive.department', 1, char(9) || char(10) || char(27) || '[31mx' || char(127)),
    (9003, 'user', CAST(x'ff41' AS TEXT), 'archive.department', 1, CAST(x'80c3' AS TEXT)),
    (9004, 'user', hex(zeroblob(524288)), 'archive.department', 1, hex(zeroblob(524288)));
