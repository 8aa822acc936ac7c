UPDATE security_permission SET permission_value = 'one' WHERE position = 1001;
UPDATE security_attribute SET attribute_value = CAST(x'610062' AS TEXT) WHERE user_name = 'omar';
UPDATE security_permission SET resource = CAST(x'62657267656E0078' AS TEXT) WHERE position = 1004;
UPDATE security_user SET group_name = CAST(x'7265636F7264735F636C65726B730078' AS TEXT) WHERE user_name = 'ines';
UPDATE security_permission SET permission_name = CAST(x'6100' AS TEXT) WHERE position = 1008;
INSERT INTO security_attribute VALUES ('nils', CAST(x'726567696F6E0078' AS TEXT), 'north');
