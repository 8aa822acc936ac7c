-- What an administrator might have changed in the sample: some users see more, some less.
DELETE FROM security_permission WHERE position = 1003;
INSERT INTO security_permission VALUES
    (2001, 'user', 'tom', 'archive.department', 1, 'Sales', 0), (2002, 'user', 'sara', 'archive.site', 1, 'gdansk', 0);
UPDATE security_attribute SET attribute_value = 'e99' WHERE user_name = 'omar';
INSERT INTO security_user VALUES ('zoe', 'board'), ('yan', '');
DELETE FROM security_user WHERE user_name = 'kofi';
