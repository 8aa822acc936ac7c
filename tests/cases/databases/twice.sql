DROP TABLE security_user;
CREATE TABLE security_user (user_name TEXT, group_name TEXT);
INSERT INTO security_user VALUES ('vera', 'board'), ('hugo', 'department_staff'), ('hugo', 'board'), ('mira', NULL);
