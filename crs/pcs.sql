-- The projected coordinate reference systems of PROJ's database, as the table that older GeoTIFF readers look up.
SELECT crs.code                   AS COORD_REF_SYS_CODE,
       crs.name                   AS COORD_REF_SYS_NAME,
       axis.uom_code              AS UOM_CODE,
       crs.geodetic_crs_code      AS SOURCE_GEOGCRS_CODE,
       crs.conversion_code        AS COORD_OP_CODE,
       conversion.method_code     AS COORD_OP_METHOD_CODE,
       1                          AS SHOW_CRS,
       crs.deprecated             AS DEPRECATED,
       crs.coordinate_system_code AS COORD_SYS_CODE,
       param1_code AS PARAMETER_CODE_1, param1_value AS PARAMETER_VALUE_1, param1_uom_code AS PARAMETER_UOM_1,
       param2_code AS PARAMETER_CODE_2, param2_value AS PARAMETER_VALUE_2, param2_uom_code AS PARAMETER_UOM_2,
       param3_code AS PARAMETER_CODE_3, param3_value AS PARAMETER_VALUE_3, param3_uom_code AS PARAMETER_UOM_3,
       param4_code AS PARAMETER_CODE_4, param4_value AS PARAMETER_VALUE_4, param4_uom_code AS PARAMETER_UOM_4,
       param5_code AS PARAMETER_CODE_5, param5_value AS PARAMETER_VALUE_5, param5_uom_code AS PARAMETER_UOM_5,
       param6_code AS PARAMETER_CODE_6, param6_value AS PARAMETER_VALUE_6, param6_uom_code AS PARAMETER_UOM_6,
       param7_code AS PARAMETER_CODE_7, param7_value AS PARAMETER_VALUE_7, param7_uom_code AS PARAMETER_UOM_7
FROM projected_crs AS crs
LEFT JOIN conversion_table AS conversion
       ON conversion.auth_name = crs.conversion_auth_name AND conversion.code = crs.conversion_code
LEFT JOIN axis
       ON axis.coordinate_system_auth_name = crs.coordinate_system_auth_name
      AND axis.coordinate_system_code = crs.coordinate_system_code AND axis.coordinate_system_order = 1
WHERE crs.auth_name = 'EPSG'
ORDER BY crs.code;
