DROP TABLE security_permission;
