INSERT INTO security_user VALUES ('OMAR', 'freelancers'), ('pia', 'freelancers'), ('omar ', 'freelancers'),
    ('zoë', 'site_clerks');
INSERT INTO security_attribute VALUES ('pia', 'employee_ids', 'e1'), ('pia', 'Employee_id', 'e2');
