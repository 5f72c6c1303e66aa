<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>JobDocument</name>
    <message>
        <source>%1 cannot be read: %2</source>
        <translation>无法读取 %1：%2</translation>
    </message>
    <message>
        <source>There is no file %1.</source>
        <translation>没有文件 %1。</translation>
    </message>
    <message>
        <source>%1 is larger than a job can be.</source>
        <translation>%1 超过了任务文件的大小上限。</translation>
    </message>
    <message>
        <source>%1 is no job, since it is not JSON: %2</source>
        <translation>%1 不是任务，因为它不是 JSON：%2</translation>
    </message>
    <message>
        <source>%1 is no job: it has no list of &quot;channels&quot;.</source>
        <translation>%1 不是任务：其中没有 &quot;channels&quot; 列表。</translation>
    </message>
    <message>
        <source>%1 gives %2 twice. Remove one of them with a text editor.</source>
        <translation>%1 中 %2 出现了两次。请用文本编辑器删去其中一个。</translation>
    </message>
    <message>
        <source>%1 has been changed by another program. Open it again, or save this job under another name.</source>
        <translation>%1 已被其他程序修改。请重新打开它，或将此任务另存为其他名称。</translation>
    </message>
    <message>
        <source>%1 cannot be written: %2</source>
        <translation>无法写入 %1：%2</translation>
    </message>
    <message>
        <source>The name of the folder %1.</source>
        <translation>文件夹的名称%1。</translation>
    </message>
    <message>
        <source>The run itself needs the name %1. Choose another folder.</source>
        <translation>构建本身需要名称 %1。请选择其他文件夹。</translation>
    </message>
    <message>
        <source>%1 has the folder %2 already. Choose another one.</source>
        <translation>%1 已经使用文件夹 %2。请选择其他文件夹。</translation>
    </message>
    <message>
        <source>%1 is no name of an Android package, like com.example.game.</source>
        <translation>%1 不是 Android 包名；包名形如 com.example.game。</translation>
    </message>
    <message>
        <source>The job has no SDKs, so that no channel can have %1.</source>
        <translation>此任务没有 SDK，因此渠道不能使用 %1。</translation>
    </message>
    <message>
        <source>%1 is no SDK of this job. It has %2.</source>
        <translation>%1 不是此任务的 SDK。此任务有 %2。</translation>
    </message>
    <message>
        <source>Folder %1</source>
        <translation>文件夹 %1</translation>
    </message>
    <message>
        <source>Name %1</source>
        <translation>名称 %1</translation>
    </message>
    <message>
        <source>Package name of %1</source>
        <translation>%1 的包名</translation>
    </message>
    <message>
        <source>Add a channel</source>
        <translation>添加渠道</translation>
    </message>
    <message>
        <source>SDKs of %1</source>
        <translation>%1 的 SDK</translation>
    </message>
    <message>
        <source>Mark of %1</source>
        <translation>%1 的角标</translation>
    </message>
    <message>
        <source>Place of the mark of %1</source>
        <translation>%1 的角标位置</translation>
    </message>
    <message>
        <source>%1 channels</source>
        <translation>%1 个渠道</translation>
    </message>
    <message>
        <source>Copy %1</source>
        <translation>复制 %1</translation>
    </message>
    <message>
        <source>Remove %1</source>
        <translation>移除 %1</translation>
    </message>
    <message>
        <source>Move %1</source>
        <translation>移动 %1</translation>
    </message>
</context>
<context>
    <name>LogModel</name>
    <message>
        <source>Log</source>
        <translation>日志</translation>
    </message>
    <message>
        <source>Detail</source>
        <translation>细节</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>信息</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>时间</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>类别</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>内容</translation>
    </message>
</context>
<context>
    <name>LogPage</name>
    <message>
        <source>Log</source>
        <translation>日志</translation>
    </message>
    <message>
        <source>&amp;Search:</source>
        <translation>搜索(&amp;S)：</translation>
    </message>
    <message>
        <source>S&amp;how:</source>
        <translation>显示(&amp;H)：</translation>
    </message>
    <message>
        <source>Everything</source>
        <translation>全部</translation>
    </message>
    <message>
        <source>The tool&apos;s log</source>
        <translation>工具的日志</translation>
    </message>
    <message>
        <source>Warnings and errors</source>
        <translation>警告和错误</translation>
    </message>
    <message>
        <source>Search in the log</source>
        <translation>在日志中搜索</translation>
    </message>
    <message>
        <source>Which entries are shown</source>
        <translation>显示哪些条目</translation>
    </message>
    <message>
        <source>The whole entry</source>
        <translation>完整条目</translation>
    </message>
    <message>
        <source>Choose an entry to read all of it.</source>
        <translation>选中一个条目即可阅读全文。</translation>
    </message>
    <message>
        <source>The file: %1</source>
        <translation>文件：%1</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>复制(&amp;C)</translation>
    </message>
    <message>
        <source>Copies the chosen entries, or all that are shown</source>
        <translation>复制选中的条目；未选中时复制显示的全部条目</translation>
    </message>
    <message>
        <source>C&amp;lear the view</source>
        <translation>清空显示(&amp;L)</translation>
    </message>
    <message>
        <source>The file stays as it is</source>
        <translation>文件保持不变</translation>
    </message>
    <message>
        <source>Nothing has been logged yet. What goes wrong during work is told here.</source>
        <translation>还没有日志。工作中出现的问题会显示在这里。</translation>
    </message>
    <message>
        <source>No entry fits. Search for something else, or show everything.</source>
        <translation>没有符合的条目。请换一个词搜索，或显示全部。</translation>
    </message>
</context>
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
