DROP TABLE security_attribute;
CREATE TABLE security_attribute (user_name TEXT, attribute_name TEXT, attribute_value TEXT);
INSERT INTO security_attribute VALUES
    ('omar', 'employee_id', '1'), ('omar', 'employee_id', '2'), ('lena', 'region', NULL);
