<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>MainWindow</name>
    <message>
        <source>QuenzoTool</source>
        <translation>QuenzoTool</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>文件(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>退出(&amp;Q)</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>查看(&amp;V)</translation>
    </message>
    <message>
        <source>&amp;Language</source>
        <translation>语言(&amp;L)</translation>
    </message>
    <message>
        <source>Pages</source>
        <translation>页面</translation>
    </message>
    <message>
        <source>Work is going on</source>
        <translation>工作正在进行</translation>
    </message>
    <message>
        <source>Closing stops it as soon as it can be stopped; what is finished stays.</source>
        <translation>关闭窗口会让它尽快停止；已完成的部分会保留。</translation>
    </message>
    <message>
        <source>Stop and close</source>
        <translation>停止并关闭</translation>
    </message>
    <message>
        <source>Go on working</source>
        <translation>继续工作</translation>
    </message>
</context>
<context>
    <name>StartPage</name>
    <message>
        <source>Start</source>
        <translation>开始</translation>
    </message>
    <message>
        <source>Open a job, or drop one here: a job names a game, its base APK and the channels whose packages are wanted.</source>
        <translation>打开一个任务，或将其拖放到这里：任务写明一个游戏、它的基础 APK 以及需要哪些渠道的安装包。</translation>
    </message>
</context>
</TS>
