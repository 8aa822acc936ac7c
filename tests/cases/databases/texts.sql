UPDATE security_permission SET permission_value = 'one' WHERE position = 1001;
UPDATE security_attribute SET attribute_value = CAST(x'610062' AS TEXT) WHERE user_name = 'omar';
