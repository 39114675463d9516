<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>GraphMenu</name>
    <message>
        <source>&amp;Copy</source>
        <translation>コピー(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Save Picture…</source>
        <translation>図を保存(&amp;S)…</translation>
    </message>
    <message>
        <source>Save &amp;Data…</source>
        <translation>データを保存(&amp;D)…</translation>
    </message>
    <message>
        <source>&amp;Reset Range</source>
        <translation>表示範囲を元に戻す(&amp;R)</translation>
    </message>
    <message>
        <source>Save Picture</source>
        <translation>図を保存</translation>
    </message>
    <message>
        <source>Save Data</source>
        <translation>データを保存</translation>
    </message>
    <message>
        <source>There is nothing in the graph yet.</source>
        <translation>グラフにはまだ何もありません。</translation>
    </message>
    <message>
        <source>The file [%1] is one that is shown: choose another name.</source>
        <translation>ファイル [%1] は表示中のデータのファイルです。別の名前にしてください。</translation>
    </message>
</context>
</TS>
