UPDATE security_permission SET permission_value = 1.5 WHERE position = 1001;
