<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>CInstallApk</name>
    <message>
        <source>File not found!</source>
        <translation>找不到文件！</translation>
    </message>
    <message>
        <source>Device unavailable!</source>
        <translation>设备不可用！</translation>
    </message>
    <message>
        <source>Please select devices first!</source>
        <translation>请先选择设备！</translation>
    </message>
    <message>
        <source>Installation is complete!</source>
        <translation>安装完成！</translation>
    </message>
    <message>
        <source>Installation failed!</source>
        <translation>安装失败！</translation>
    </message>
    <message>
        <source>Uninstallation failed (app may not exist)!</source>
        <translation>卸载失败（应用可能不存在）！</translation>
    </message>
    <message>
        <source>Uninstall successful!</source>
        <translation>卸载成功！</translation>
    </message>
</context>
<context>
    <name>PythonToolThread</name>
    <message>
        <source>The imported file is not this SDK</source>
        <translation>导入的文件不是此 SDK</translation>
    </message>
    <message>
        <source>Import file was damaged!</source>
        <translation>导入的文件已损坏！</translation>
    </message>
    <message>
        <source>Import file is wrong(config.xml was not found!)</source>
        <translation>导入的文件有误（找不到 config.xml！）</translation>
    </message>
    <message>
        <source>Import file is wrong(Failed to parse config.xml!)</source>
        <translation>导入的文件有误（无法解析 config.xml！）</translation>
    </message>
    <message>
        <source>Failed to unzip!</source>
        <translation>解压失败！</translation>
    </message>
</context>
<context>
    <name>QSQLiteResult</name>
    <message>
        <source>Unable to fetch row</source>
        <translation>无法获取行</translation>
    </message>
</context>
</TS>
